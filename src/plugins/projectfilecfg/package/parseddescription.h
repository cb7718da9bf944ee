// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QStringList>

class QIODevice;
class QJsonDocument;
struct QJsonParseError;

namespace ProjectFileCfg {
namespace Internal {

/// The entry that an apply reads: the first description in the archive's order. Empty if there is none.
QString findDescription(const QStringList &entries);

/// The JSON document in `device`, which is open for reading. Null if it exceeds PackageLimits or is not JSON; `error`
/// is the parser's, and unchanged if the parser did not run.
QJsonDocument parseDescription(QIODevice &device, QJsonParseError &error);

} // namespace Internal
} // namespace ProjectFileCfg
