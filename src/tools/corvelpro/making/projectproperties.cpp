// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectproperties.h"

#include "reason.h"

#include <QString>

#include <algorithm>

namespace Corvelpro {
namespace ProjectProperties {

using namespace ProjectFileCfg::Internal;

namespace {

constexpr int maxNameBytes = 64;
constexpr int maxCommentLength = 100;

bool isForbidden(QChar character)
{
    return character.category() == QChar::Other_Control || QStringLiteral("<>:\"/\\|?*").contains(character);
}

} // namespace

bool isName(const QString &name, QString *reason)
{
    const auto because = [&](const QString &text) {
        return failBecause(reason, QStringLiteral("\"%1\" cannot be a project's name: %2").arg(name, text));
    };
    if (name.isEmpty())
        return because(QStringLiteral("it is empty"));
    if (name != name.trimmed())
        return because(QStringLiteral("it begins or ends with a blank"));
    if (name.startsWith(QLatin1Char('.')))
        return because(QStringLiteral("it begins with a dot"));
    if (std::any_of(name.begin(), name.end(), isForbidden))
        return because(QStringLiteral("a file's name cannot have all of its characters"));
    const int size = name.toUtf8().size();
    return size <= maxNameBytes ||
           because(QStringLiteral("it has %1 bytes, the limit is %2").arg(size).arg(maxNameBytes));
}

bool isComment(const QString &comment, QString *reason)
{
    return comment.size() <= maxCommentLength ||
           failBecause(reason, QStringLiteral("the comment has %1 characters, the limit is %2")
                                   .arg(comment.size())
                                   .arg(maxCommentLength));
}

} // namespace ProjectProperties
} // namespace Corvelpro
