#include <core/logrelay.h>

namespace Core {

namespace {

QtMessageHandler s_previousHandler = nullptr;

void relay(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    // The offscreen platform says this for every dialog; it would bury the log that is pictured in the tour.
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
    // Threads may still write messages while the program's static objects are destroyed.
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
