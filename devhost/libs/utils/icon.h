// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <utils/utils_global.h>

#include <QIcon>
#include <QString>

namespace Corvel {
namespace Utils {

/// Stands for the host's icon theme.
class HOST_UTILS_EXPORT Icon
{
public:
    /// The theme's image of that name; a null icon, and one warning in the log, if the theme has none. `theme`
    /// overrides the current theme unless empty. User-interface thread only.
    static QIcon fromTheme(const QString &name, const QString &theme);

    /// Combines the icons for the three states of a checkable, flat tool button.
    static QIcon fromStates(const QIcon &normal, const QIcon &hover, const QIcon &pressed);
};

} // namespace Utils
} // namespace Corvel
