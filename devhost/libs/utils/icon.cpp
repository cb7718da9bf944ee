// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <utils/icon.h>

#include <QDebug>
#include <QFile>

namespace Corvel {
namespace Utils {

QIcon Icon::fromTheme(const QString &name, const QString &theme)
{
    const QString folder = theme.isEmpty() ? QStringLiteral("theme") : theme;
    const QString path = QStringLiteral(":/%1/images/%2.png").arg(folder, name);
    if (!QFile::exists(path)) {
        qWarning().noquote() << "The icon theme has no image" << path;
        return QIcon();
    }
    return QIcon(path);
}

QIcon Icon::fromStates(const QIcon &normal, const QIcon &hover, const QIcon &pressed)
{
    QIcon icon;
    const auto add = [&icon](const QIcon &source, QIcon::Mode mode, QIcon::State state) {
        const QList<QSize> sizes = source.availableSizes();
        for (const QSize &size : sizes)
            icon.addPixmap(source.pixmap(size), mode, state);
    };
    add(normal, QIcon::Normal, QIcon::Off);
    add(hover, QIcon::Active, QIcon::Off);
    add(pressed, QIcon::Normal, QIcon::On);
    add(pressed, QIcon::Active, QIcon::On);
    return icon;
}

} // namespace Utils
} // namespace Corvel
