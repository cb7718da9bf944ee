// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/look.h>

#include <core/hostsettings.h>

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QPalette>
#include <QRegularExpression>
#include <QStyleFactory>

namespace Core {

namespace {

/// The text size for which dark.qss is written.
constexpr int normalTextSize = 13;

int textSize()
{
    const int wanted = hostSettings().textPixelSize;
    if (wanted > 0)
        return qBound(11, wanted, 20);
    // Without a desktop Qt makes up a size.
    if (QGuiApplication::platformName() == QLatin1String("offscreen") ||
        QGuiApplication::platformName() == QLatin1String("minimal"))
        return normalTextSize;
    return qBound(11, QFontInfo(QFontDatabase::systemFont(QFontDatabase::GeneralFont)).pixelSize(), 20);
}

/// The style sheet scaled to that text size: style sheets have no relative font sizes.
QString inTextSize(const QString &sheet, int size)
{
    static const QRegularExpression fontSize(QStringLiteral("font-size: (\\d+)px;(?: /\\* at most (\\d+)px \\*/)?"));
    QString result;
    int copied = 0;
    for (auto matches = fontSize.globalMatch(sheet); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        int scaled = qRound(match.captured(1).toDouble() * size / normalTextSize);
        if (!match.captured(2).isEmpty())
            scaled = qMin(scaled, match.captured(2).toInt());
        result += sheet.midRef(copied, match.capturedStart() - copied);
        result += QStringLiteral("font-size: %1px;").arg(scaled);
        copied = match.capturedEnd();
    }
    return result + sheet.midRef(copied);
}

/// For widgets out of the style sheet's reach, such as parts of Qt's own dialogs. The colours match dark.qss.
QPalette darkPalette()
{
    const QColor window("#2B2C31");
    const QColor panel("#222126");
    const QColor line(81, 84, 91);
    const QColor text("#E6E7EA");
    const QColor quietText("#A9ACB3");
    const QColor blue("#4C9AFF");

    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, panel);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, quietText);
    palette.setColor(QPalette::Button, QColor("#3A3B41"));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, text);
    palette.setColor(QPalette::ToolTipBase, panel);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, blue);
    palette.setColor(QPalette::HighlightedText, panel);
    palette.setColor(QPalette::Link, blue);
    palette.setColor(QPalette::LinkVisited, blue);
    palette.setColor(QPalette::Light, QColor("#45474E"));
    palette.setColor(QPalette::Midlight, QColor("#3A3B41"));
    palette.setColor(QPalette::Mid, line);
    palette.setColor(QPalette::Dark, panel);
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, quietText);
    return palette;
}

} // namespace

void applyLook()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(darkPalette());
    const int size = textSize();
    QFont font;
    // Named explicitly: Qt's own fallback for emoji depends on the machine.
    font.setFamilies(
        {QStringLiteral("DejaVu Sans"), QStringLiteral("WenQuanYi Micro Hei"), QStringLiteral("Noto Color Emoji")});
    font.setPixelSize(size);
    QApplication::setFont(font);

    QFile sheet(QStringLiteral(":/core/style/dark.qss"));
    if (sheet.open(QIODevice::ReadOnly))
        qApp->setStyleSheet(inTextSize(QString::fromUtf8(sheet.readAll()), size));
    else
        qWarning("The host's style sheet is missing");
}

} // namespace Core
