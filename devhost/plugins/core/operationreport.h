#pragma once

#include <core/icore.h>

#include <QHash>
#include <QObject>
#include <QPair>

#include <atomic>

namespace Core {

/// Watches the operations of which plugins tell ICore, and says afterwards what became of the last one, as far as the
/// host can know: which project file appeared, whether the configuration was written, with which message it ended. The
/// success of a plugin's own checks is not known to it, and it claims none. User-interface thread only.
class OperationReport : public QObject
{
    Q_OBJECT

public:
    explicit OperationReport(QObject *parent);

    /// One sentence in the language in force; empty before the first operation has ended, and while one runs.
    QString text() const;

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

    ICore::OperatorDeviceType m_running = ICore::OperatorNone;
    /// Between the end of an operation and the event loop, in which its message box opens.
    bool m_ending = false;
    Listing m_before;
    QString m_device;
    bool m_online = false;
    std::atomic<bool> m_sentToDevice{false};
    std::atomic<bool> m_storedOffline{false};
    Outcome m_outcome = None;
    /// A project's name, the device's name or the message.
    QString m_detail;
};

} // namespace Core
