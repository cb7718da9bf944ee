// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/logview.h>

#include <core/logrelay.h>

#include <QTime>

namespace Core {

namespace {

constexpr int shownLines = 2000;
const QLatin1String quietColour("#A9ACB3");
const QLatin1String textColour("#E6E7EA");
const QLatin1String warningColour("#F2B84B");
const QLatin1String errorColour("#F06A6A");
const QLatin1String operationColour("#4C9AFF");

} // namespace

LogView::LogView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("LogView"));
    setReadOnly(true);
    setTabChangesFocus(true);
    setMaximumBlockCount(shownLines);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    // Both are emitted from any thread.
    connect(LogRelay::instance(), &LogRelay::message, this, &LogView::addMessage, Qt::QueuedConnection);
    connect(ICore::instance(), &ICore::operatorTypeChanged, this, &LogView::addOperation, Qt::QueuedConnection);
}

void LogView::addMessage(QtMsgType type, const QString &text)
{
    switch (type) {
    case QtDebugMsg:
        return addLine(quietColour, QStringLiteral("debug"), text);
    case QtInfoMsg:
        return addLine(textColour, QStringLiteral("info"), text);
    case QtWarningMsg:
        return addLine(warningColour, QStringLiteral("warning"), text);
    default:
        return addLine(errorColour, QStringLiteral("error"), text);
    }
}

void LogView::addOperation(ICore::OperatorDeviceType type, const QString &text)
{
    static const char *const names[] = {"load", "backup", "none"};
    QString line = QLatin1String(names[type]);
    if (!text.isEmpty())
        line += QStringLiteral(": ") + text;
    addLine(operationColour, QStringLiteral("operation"), line);
}

void LogView::addLine(const QString &colour, const QString &kind, const QString &text)
{
    appendHtml(
        QStringLiteral("<span style=\"color:%1\">%2</span> <span style=\"color:%3; white-space:pre-wrap\">%4 %5</span>")
            .arg(quietColour, QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")), colour,
                 kind.leftJustified(10).toHtmlEscaped(), text.toHtmlEscaped()));
}

} // namespace Core
