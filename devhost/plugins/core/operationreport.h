#pragma once

#include <core/icore.h>

#include <QHash>
#include <QObject>
#include <QPair>

#include <atomic>

namespace Core {

/// Watches the operations announced to ICore and summarises the last one as far as the host can observe it: which
/// project file appeared, whether the configuration was written, which message it ended with. It does not know the
/// results of a plugin's own checks and claims none. User-interface thread only.
class OperationReport : public QObject
{
    Q_OBJECT

public:
    explicit OperationReport(QObject *parent);

    /// One sentence in the current language; empty before the first operation has ended and while one runs.
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
