#pragma once

#include <core/core_global.h>

#include <QObject>

namespace Core {

/// Brings what goes to Qt's message logger, from whatever thread, to the log view; the messages go on to
/// the handler that was there before.
class HOST_CORE_EXPORT LogRelay : public QObject
{
    Q_OBJECT

public:
    static LogRelay *instance();
    /// Takes over the message logger; once is enough.
    static void install();

signals:
    /// Emitted from the thread that wrote the message.
    void message(QtMsgType type, const QString &text);

private:
    LogRelay();
};

} // namespace Core

Q_DECLARE_METATYPE(QtMsgType)
