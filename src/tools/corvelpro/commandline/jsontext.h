// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QByteArray;
class QJsonObject;
class QJsonValue;
class QString;

namespace Corvelpro {

// QJsonDocument rounds integers above 2^53 when it writes them, and QJsonObject::insert() when it stores them. These
// functions write the integers of a parsed document exactly.

/// The value as JSON text on one line.
QString jsonText(const QJsonValue &value);

/// The object as a document, indented as QJsonDocument does it.
QByteArray jsonDocument(const QJsonObject &object);

} // namespace Corvelpro
