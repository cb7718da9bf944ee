// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QObject>
#include <QStringList>

class QDropEvent;
class QMimeData;
class QTableWidget;

namespace ProjectFileCfg {
namespace Internal {

/// Accepts package files that are dragged onto the project table, for example from a file manager. User-interface
/// thread.
///
/// Refuses a drag, which the cursor shows, while a dialog blocks the panel, and if it contains anything but local files
/// with the packages' extension, in any case. The files are copied, never moved: a drag that does not allow a copy is
/// refused.
class PackageDrop : public QObject
{
    Q_OBJECT

public:
    /// Belongs to `table`.
    explicit PackageDrop(QTableWidget *table);
    ~PackageDrop() override;

signals:
    /// The files of a drop, in the order of the drag. Some may no longer exist. Emitted from the event loop, so that a
    /// receiver may open dialogs: the source of the drag is blocked until the drop event has been handled.
    void signal_dropped(const QStringList &files);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static QStringList packagesIn(const QMimeData *data);
    static bool isBlocked();
    bool answer(QDropEvent *event) const;
    void announce(const QStringList &files);

    /// The files being dragged; empty if the drag is refused.
    QStringList m_listFiles;
};

} // namespace Internal
} // namespace ProjectFileCfg
