// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QByteArray;
class QJsonObject;
class QJsonValue;
class QString;

namespace Corvelpro {

// QJsonDocument writes 9007199254740993 as 9007199254740992, and QJsonObject::insert() makes the one the other. These
// write each integer as it is.

/// Any JSON value as JSON writes it, on one line.
QString jsonText(const QJsonValue &value);

/// The object as a document, indented as QJsonDocument does it.
QByteArray jsonDocument(const QJsonObject &object);

} // namespace Corvelpro
