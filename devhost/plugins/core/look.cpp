#include <core/look.h>

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>

namespace Core {

namespace {

/// For what the style sheet does not reach, such as the parts of Qt's own dialogs. The colours are those of dark.qss.
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
    QFont font;
    font.setFamilies({QStringLiteral("DejaVu Sans"), QStringLiteral("WenQuanYi Micro Hei")});
    font.setPixelSize(13);
    QApplication::setFont(font);

    QFile sheet(QStringLiteral(":/core/style/dark.qss"));
    if (sheet.open(QIODevice::ReadOnly))
        qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
    else
        qWarning("The host's style sheet is missing");
}

} // namespace Core
