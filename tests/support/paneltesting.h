// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <engineerdocoperwidget.h>

#include <support/answerbook.h>
#include <support/packagebuilder.h>
#include <support/testsite.h>
#include <widgets/fixedbitlineeditex.h>

#include <QComboBox>
#include <QDateTime>
#include <QDialog>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileSystemWatcher>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSemaphore>
#include <QStandardPaths>
#include <QTableWidget>
#include <QTextEdit>
#include <QThreadPool>
#include <QToolButton>
#include <QtConcurrentRun>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>

/// Shared by the panel's tests: project files, a site, the panel's visible parts, and ways to wait for scans and to
/// block them.
namespace PanelTesting {

using ProjectFileCfg::Internal::EngineerDocOperWidget;

/// Spelled out here to test the product's own path too.
inline QString projectFilesPath()
{
    return QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0) +
           QStringLiteral("/Velmora/Tarvo/ProjectFiles/");
}

inline QString projectFile(const QString &name)
{
    return projectFilesPath() + name + QStringLiteral(".corvelpro");
}

/// The directory as before a first start, or an empty one. Also removes a file in its place.
inline bool removeProjectFilesDirectory()
{
    QFile::remove(projectFilesPath().chopped(1));
    return QDir(projectFilesPath()).removeRecursively();
}
inline bool clearProjectFilesDirectory()
{
    return removeProjectFilesDirectory() && QDir().mkpath(projectFilesPath());
}

/// Makes the file at `path` that many minutes old.
inline bool makeOld(const QString &path, int minutes)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QDateTime::currentDateTime().addSecs(-60 * minutes), QFileDevice::FileModificationTime);
}

/// A valid package in the file at `path`, complete when it appears.
inline bool writePackage(const QString &path, const QString &comment, int minutesOld = 0)
{
    const QString aside = QDir::homePath() + QStringLiteral("/aside.zip");
    TestSupport::PackageBuilder package;
    package.file("device.json", "{}").record(QStringLiteral("a name that nobody sees"), comment);
    QFile::remove(path);
    return package.write(aside) && makeOld(aside, minutesOld) && QFile::rename(aside, path);
}

/// Waits until all work of the thread pool has ended and its events were processed.
inline void settle()
{
    // An event may start new work, like the report of a changed directory.
    do {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    } while (QThreadPool::globalInstance()->activeThreadCount() > 0);
    QCoreApplication::processEvents();
}

/// During its lifetime all tasks given to the thread pool wait.
class HeldThreadPool
{
public:
    HeldThreadPool()
        : m_threads(QThreadPool::globalInstance()->maxThreadCount())
    {
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        QtConcurrent::run([this] { m_end.acquire(); });
    }
    ~HeldThreadPool()
    {
        m_end.release();
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(m_threads);
    }
    Q_DISABLE_COPY(HeldThreadPool)

private:
    const int m_threads;
    QSemaphore m_end;
};

/// Reports when the system has reported a change of the project-files directory, at the same time as to the panel.
class DirectoryObserver
{
public:
    DirectoryObserver()
        : m_watcher(QStringList{projectFilesPath()})
    {
        QObject::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_watcher, [this] { ++m_changes; });
    }
    int changes() const { return m_changes; }

private:
    int m_changes = 0;
    QFileSystemWatcher m_watcher;
};

/// Tracks every future watcher notified after its construction: those of scans, copies and imports.
class FutureWatchers : public QObject
{
public:
    FutureWatchers() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::FutureCallOut && !m_seen.contains(object))
            m_seen.append(object);
        return false;
    }

    int seen() const { return m_seen.count(); }
    int alive() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return int(std::count_if(m_seen.begin(), m_seen.end(),
                                 [](const QPointer<QObject> &watcher) { return !watcher.isNull(); }));
    }

private:
    QVector<QPointer<QObject>> m_seen;
};

/// The class name of the dialog for name and comment, for AnswerBook.
inline const QString propertyDialog = QStringLiteral("EngineerPropertySettingWidget");

/// The texts in the property dialog.
struct Properties
{
    QString name;
    QString comment;
};
inline Properties propertiesIn(const QDialog *dialog)
{
    return {dialog->findChild<Corvel::Widgets::FixedBitLineEditEx *>()->text(),
            dialog->findChild<QTextEdit *>()->toPlainText()};
}
inline void enterProperties(const QDialog *dialog, const QString &name, const QString &comment)
{
    dialog->findChild<Corvel::Widgets::FixedBitLineEditEx *>()->setText(name);
    dialog->findChild<QTextEdit *>()->setPlainText(comment);
}
/// Fills in the dialog and presses OK.
inline void answerProperties(QDialog *dialog, const QString &name, const QString &comment)
{
    enterProperties(dialog, name, comment);
    TestSupport::click(dialog, QStringLiteral("OK"));
}

/// The panel and its parts, found as a user finds them.
class Panel
{
public:
    explicit Panel(QWidget *parent = nullptr)
        : widget(std::make_unique<EngineerDocOperWidget>(parent))
    {}

    EngineerDocOperWidget *operator->() const { return widget.get(); }

    QLayoutItem *item(int index) const { return widget->layout()->itemAt(index); }
    QHBoxLayout *row(int index) const { return qobject_cast<QHBoxLayout *>(item(index)->layout()); }
    template<typename T>
    T *inRow(int rowIndex, int index) const
    {
        return qobject_cast<T *>(row(rowIndex)->itemAt(index)->widget());
    }

    QLabel *deviceLabel() const { return inRow<QLabel>(1, 1); }
    QComboBox *deviceCombo() const { return inRow<QComboBox>(1, 2); }
    QPushButton *saveProject() const { return inRow<QPushButton>(3, 1); }
    QPushButton *allSaveAs() const { return inRow<QPushButton>(3, 3); }
    QPushButton *allDelete() const { return inRow<QPushButton>(3, 4); }
    QTableWidget *table() const { return inRow<QTableWidget>(4, 1); }
    QFrame *separator() const { return qobject_cast<QFrame *>(item(5)->widget()); }
    QPushButton *importProject() const { return inRow<QPushButton>(7, 1); }
    QPushButton *applyOthers() const { return inRow<QPushButton>(7, 2); }

    QStringList names() const { return column(0); }
    QStringList comments() const { return column(1); }
    QList<QToolButton *> rowButtons(int tableRow) const
    {
        return table()->cellWidget(tableRow, 2)->findChildren<QToolButton *>();
    }

    /// The buttons in that project's row; null if it is not listed.
    QWidget *projectRow(const QString &project) const
    {
        const int tableRow = names().indexOf(project);
        return tableRow < 0 ? nullptr : table()->cellWidget(tableRow, 2);
    }
    /// The project in whose row that widget is; empty if it is in none.
    QString projectOf(const QWidget *widget) const
    {
        for (int tableRow = 0; tableRow < table()->rowCount(); ++tableRow) {
            if (table()->cellWidget(tableRow, 2)->isAncestorOf(widget))
                return table()->item(tableRow, 0)->text();
        }
        return QString();
    }

    /// The four marks of each entry of the selector: information, type, name and address.
    static constexpr int markRole = Qt::UserRole + 1;
    QStringList marks(int index) const { return deviceCombo()->itemData(index, markRole).toStringList(); }
    QString selectedAddress() const { return marks(deviceCombo()->currentIndex()).value(3); }
    /// Selects the device with that address; false if it is not listed.
    bool selectDevice(const QString &ip) const
    {
        for (int index = 0; index < deviceCombo()->count(); ++index) {
            if (marks(index).value(3) == ip) {
                deviceCombo()->setCurrentIndex(index);
                return true;
            }
        }
        return false;
    }

    /// Starts a scan, like every operation that changes the directory, and waits for its end.
    void rescan() const
    {
        QMetaObject::invokeMethod(widget.get(), "slot_projectFilesChanged");
        settle();
    }

    std::unique_ptr<EngineerDocOperWidget> widget;

private:
    QStringList column(int index) const
    {
        QStringList texts;
        for (int tableRow = 0; tableRow < table()->rowCount(); ++tableRow)
            texts.append(table()->item(tableRow, index)->text());
        return texts;
    }
};

} // namespace PanelTesting
