// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QJsonValue;
class QString;

namespace Corvelpro {

/// Any JSON value as JSON writes it, on one line.
QString jsonText(const QJsonValue &value);

} // namespace Corvelpro
