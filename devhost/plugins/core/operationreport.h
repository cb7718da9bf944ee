// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/icore.h>

#include <QHash>
#include <QObject>
#include <QPair>

#include <atomic>

namespace Simulation {
struct JournalEntry;
}

namespace Core {

/// Watches the operations announced to ICore and summarises the last one as far as the host can observe it: which
/// project file appeared, whether the configuration was written, which message it ended with. It does not know the
/// results of a plugin's own checks and claims none. Work that is not announced, such as an import, it knows by the
/// waiting dialog and by the message that follows it. User-interface thread only.
class OperationReport : public QObject
{
    Q_OBJECT

public:
    explicit OperationReport(QObject *parent);

    /// One sentence in the current language; empty before the first operation has ended and while one runs. While the
    /// waiting dialog is shown, its text.
    QString text() const;

    /// A message cannot be translated afterwards; call this when the language changes.
    void forgetMessage();

signals:
    void changed();

private:
    enum Outcome { None, Saved, SeveralWritten, NotSaved, Applied, NotApplied, Message };
    /// Size and time of each project file, by its name.
    using Listing = QHash<QString, QPair<qint64, qint64>>;

    static Listing projectFiles();
    void begin(ICore::OperatorDeviceType type);
    void end();
    void settle();
    void observe(const Simulation::JournalEntry &entry);
    void awaitMessage();

    ICore::OperatorDeviceType m_running = ICore::OperatorNone;
    /// The waiting dialog's text; empty while it is hidden.
    QString m_waiting;
    /// From the end of an operation until its message box opens in the event loop.
    bool m_ending = false;
    Listing m_before;
    QString m_device;
    bool m_online = false;
    std::atomic<bool> m_sentToDevice{false};
    std::atomic<bool> m_storedOffline{false};
    Outcome m_outcome = None;
    /// The name of the project or device, or the message.
    QString m_detail;
};

} // namespace Core
