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

/// Takes package files that are dragged onto the project table, from a file manager for example. User-interface thread.
///
/// A drag is refused, which the cursor shows, unless all of it are local files with the packages' extension, in
/// capitals too, and while a dialog blocks the panel. The source of a drag keeps its files: it is offered a copy, and
/// refused if it only moves or links.
class PackageDrop : public QObject
{
    Q_OBJECT

public:
    /// Belongs to `table`.
    explicit PackageDrop(QTableWidget *table);
    ~PackageDrop() override;

signals:
    /// The files of a drop, in the order of the drag. Some may have gone since they were dragged onto the table.
    /// Emitted from the event loop, so that a receiver may open dialogs: the source waits until the drop itself has
    /// returned.
    void signal_dropped(const QStringList &files);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static QStringList packagesIn(const QMimeData *data);
    static bool isBlocked();
    bool answer(QDropEvent *event) const;
    void announce(const QStringList &files);

    /// What is being dragged; empty if that is not welcome.
    QStringList m_listFiles;
};

} // namespace Internal
} // namespace ProjectFileCfg
