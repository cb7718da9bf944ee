// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/logrelay.h>

namespace Core {

namespace {

QtMessageHandler s_previousHandler = nullptr;

void relay(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    // The offscreen platform logs this for every dialog; it would flood the log in the tour's screenshots.
    if (text == QLatin1String("This plugin does not support propagateSizeHints()"))
        return;
    emit LogRelay::instance()->message(type, text);
    if (s_previousHandler)
        s_previousHandler(type, context, text);
}

} // namespace

LogRelay::LogRelay()
{
    qRegisterMetaType<QtMsgType>();
}

LogRelay *LogRelay::instance()
{
    // Never destroyed: threads may log during static destruction.
    static LogRelay *relay = new LogRelay;
    return relay;
}

void LogRelay::install()
{
    if (s_previousHandler)
        return;
    instance();
    s_previousHandler = qInstallMessageHandler(relay);
}

} // namespace Core
