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
    /// The theme's image of that name; a null icon, and one warning in the log, when the theme has none.
    /// `theme` chooses another theme than the current one; empty means the current one.
    /// User-interface thread only.
    static QIcon fromTheme(const QString &name, const QString &theme);

    /// One icon out of those for the three states of a checkable button: a flat tool button shows the right one.
    static QIcon fromStates(const QIcon &normal, const QIcon &hover, const QIcon &pressed);
};

} // namespace Utils
} // namespace Corvel
