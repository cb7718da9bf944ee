// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>

#include <QObject>

namespace Core {

/// Forwards Qt's log messages, from any thread, to the log view and to the previous handler.
class HOST_CORE_EXPORT LogRelay : public QObject
{
    Q_OBJECT

public:
    static LogRelay *instance();
    /// Installs the message handler; further calls do nothing.
    static void install();

signals:
    /// Emitted from the thread that wrote the message.
    void message(QtMsgType type, const QString &text);

private:
    LogRelay();
};

} // namespace Core

Q_DECLARE_METATYPE(QtMsgType)
