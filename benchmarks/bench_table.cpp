// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// The panel's table of project files against one that rebuilds every row, both shown with the host's style sheet.
// Measured is how long the user-interface thread is blocked.
//
//     bench_table [--quick] [--rows FILE] [fill] [rescan] [growth]

#include "benchmark.h"

#include "engineerdocoperwidget.h"
#include "projectlist.h"

#include <core/look.h>
#include <support/packagebuilder.h>

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSemaphore>
#include <QStandardPaths>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QThread>
#include <QThreadPool>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtConcurrentRun>

#include <memory>

#include <ctime>

using namespace Benchmark;
using namespace ProjectFileCfg::Internal;

namespace {

/// Processor time of this thread in milliseconds: independent of other programs.
double processorTime()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Records the longest event of the user-interface thread.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (QThread::currentThread() != thread() || m_depth > 0)
            return QApplication::notify(receiver, event);
        ++m_depth;
        const double before = processorTime();
        const bool handled = QApplication::notify(receiver, event);
        longest = std::max(longest, processorTime() - before);
        --m_depth;
        return handled;
    }

    double longest = 0;

private:
    int m_depth = 0;
};

Application *application()
{
    return static_cast<Application *>(qApp);
}

/// Until all scans have ended and their results are laid out and painted.
void settle()
{
    QThreadPool::globalInstance()->waitForDone();
    for (int round = 0; round < 4; ++round) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
}

QString projectFiles()
{
    return QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0) +
           QStringLiteral("/Velmora/Tarvo/ProjectFiles/");
}

void makePackage(int number)
{
    TestSupport::PackageBuilder package;
    package.file("device.json", "{}").record("show", QStringLiteral("Comment of project %1").arg(number));
    const QString path = projectFiles() + QStringLiteral("Project%1.corvelpro").arg(number);
    require(package.write(path), "cannot write " + path);
    QFile file(path);
    require(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(QDateTime::fromSecsSinceEpoch(1700000000 - number), QFileDevice::FileModificationTime),
            "cannot date " + path);
}

void makePackages(int count)
{
    QDir(projectFiles()).removeRecursively();
    QDir().mkpath(projectFiles());
    for (int number = 0; number < count; ++number)
        makePackage(number);
}

/// A panel like the product's whose table is cleared and refilled by each scan.
class PlainPanel : public QWidget
{
public:
    PlainPanel()
        : table(new QTableWidget)
    {
        setProperty("EngineerFile", true);
        table->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
        table->verticalHeader()->setVisible(false);
        table->setFrameShape(QFrame::NoFrame);
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        table->setSelectionMode(QAbstractItemView::NoSelection);
        table->verticalHeader()->setDefaultSectionSize(48);
        table->setFocusPolicy(Qt::NoFocus);
        table->setColumnCount(3);
        table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Fixed);
        table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
        table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Fixed);
        table->setColumnWidth(0, 340);
        table->setColumnWidth(2, 340);
        table->horizontalHeader()->setContentsMargins(15, 0, 15, 0);
        table->setHorizontalHeaderLabels({"Project file", "Comment", "Operations"});
        setLayout(new QVBoxLayout);
        layout()->addWidget(table);
    }

    /// What a scan does, in the thread pool like the product's.
    void scan()
    {
        QtConcurrent::run([this] { list.scanProjectFiles(projectFiles(), list.beginScan()); });
        QThreadPool::globalInstance()->waitForDone();
    }

    void fill()
    {
        table->setRowCount(list.listProjects.size());
        int row = 0;
        for (const EngineerPacketInfo &info : qAsConst(list.listProjects)) {
            const QString name = QFileInfo(info.strFilePath).fileName().remove(".corvelpro");
            table->setItem(row, 0, new QTableWidgetItem(QIcon(":resource/images/icon_project_normal.png"), name));
            table->setItem(row, 1, new QTableWidgetItem(info.strComment));
            auto *widget = new QWidget(this);
            widget->setLayout(new QHBoxLayout);
            addButton(widget, "EngineerDocOperBlue", "Edit", "edit", info.strFilePath);
            addLine(widget, "EngineerFunctionLine");
            addButton(widget, "EngineerDocOperBlue", "Apply", "apply", info.strFilePath);
            addLine(widget, "EngineerFunctionLine");
            addButton(widget, "EngineerDocOperBlue", "Save as", "save", info.strFilePath);
            addLine(widget, "DeviceFunctionLine");
            addButton(widget, "EngineerDocOperRed", "Delete", "del", info.strFilePath);
            table->setCellWidget(row, 2, widget);
            ++row;
        }
    }

    QTableWidget *const table;
    ProjectList list;

private:
    void addButton(QWidget *row, const char *style, const QString &text, const QString &icon, const QString &path)
    {
        auto *button = new QToolButton(this);
        button->setProperty(style, true);
        button->setText(text);
        button->setIcon(QIcon(QStringLiteral(":resource/images/icon_setting_project_%1.png").arg(icon)));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setProperty("FilePath", path);
        connect(button, &QAbstractButton::clicked, this, [] {});
        row->layout()->addWidget(button);
    }
    static void addLine(QWidget *row, const char *style)
    {
        auto *line = new QFrame;
        line->setProperty(style, true);
        line->setFixedWidth(1);
        line->setFrameShape(QFrame::VLine);
        row->layout()->addWidget(line);
    }
};

/// The product's panel, sized so that both tables have the same size.
class Ours
{
public:
    Ours()
        : panel(nullptr)
        , table(panel.findChild<QTableWidget *>())
    {
        panel.resize(1280, 900);
        panel.show();
    }
    void rescan() { QMetaObject::invokeMethod(&panel, "slot_projectFilesChanged"); }

    EngineerDocOperWidget panel;
    QTableWidget *const table;
};

QStringList contentOf(QTableWidget *table)
{
    QStringList content;
    for (int row = 0; row < table->rowCount(); ++row) {
        content << table->item(row, 0)->text() << table->item(row, 1)->text();
        for (QToolButton *button : table->cellWidget(row, 2)->findChildren<QToolButton *>())
            content << button->text() << button->property("FilePath").toString();
    }
    return content;
}

QImage pictureOf(QTableWidget *table)
{
    return table->viewport()->grab().toImage();
}

/// Both tables have the same contents and the same look, from the first row to the last.
void compareTables(QTableWidget *plain, QTableWidget *ours, int rows)
{
    require(ours->rowCount() == rows && contentOf(plain) == contentOf(ours), "the tables differ");
    plain->setFixedSize(ours->size());
    settle();
    for (QTableWidget *table : {plain, ours})
        table->scrollToTop();
    settle();
    require(pictureOf(plain) == pictureOf(ours), "the tables look different");
    for (QTableWidget *table : {plain, ours})
        table->scrollToBottom();
    settle();
    require(pictureOf(plain) == pictureOf(ours), "the ends of the tables look different");
}

/// Processor time of the user-interface thread until the work is done, laid out and painted.
double busyDuring(const std::function<void()> &work, double *longest = nullptr)
{
    application()->longest = 0;
    const double before = processorTime();
    work();
    settle();
    if (longest)
        *longest = std::max(*longest, application()->longest);
    return processorTime() - before;
}

void fill(Report &report, int rows)
{
    makePackages(rows);
    Pair times;
    for (int pair = 0; pair < report.pairs(); ++pair) {
        PlainPanel plain;
        plain.resize(1280, 900);
        plain.show();
        plain.scan();
        settle();
        times.plain.milliseconds.append(busyDuring([&] { plain.fill(); }));

        // The panel starts a scan when constructed; scans wait until it is shown.
        QThreadPool *pool = QThreadPool::globalInstance();
        const int threads = pool->maxThreadCount();
        pool->setMaxThreadCount(1);
        QSemaphore hold;
        QtConcurrent::run([&hold] { hold.acquire(); });
        Ours ours;
        QCoreApplication::processEvents();
        require(ours.table->rowCount() == 0, "the table is filled already");
        times.ours.milliseconds.append(busyDuring([&] { hold.release(); }));
        pool->setMaxThreadCount(threads);
        compareTables(plain.table, ours.table, rows);
    }
    report.faster(QStringLiteral("first fill of %1 rows").arg(rows), "every row as it is described", times, 1.3);
}

void rescan(Report &report, int rows)
{
    makePackages(rows);
    PlainPanel plain;
    plain.resize(1280, 900);
    plain.show();
    plain.scan();
    plain.fill();
    Ours ours;
    settle();
    double longest = 0;
    Pair unchanged;
    for (int pair = 0; pair < report.pairs(); ++pair) {
        unchanged.plain.milliseconds.append(busyDuring([&] {
            plain.scan();
            plain.fill();
        }));
        unchanged.ours.milliseconds.append(busyDuring([&] { ours.rescan(); }, &longest));
        compareTables(plain.table, ours.table, rows);
    }
    report.faster(QStringLiteral("rescan of %1, nothing changed").arg(rows), "every row anew", unchanged, 30);
    report.atMost("  longest pause of the user interface", longest, "ms", 50);

    longest = 0;
    Pair changed;
    for (int pair = 0; pair < report.pairs(); ++pair) {
        // A file in the middle is replaced by another one.
        const QString old = projectFiles() + QStringLiteral("Project%1.corvelpro").arg(rows / 2 + pair);
        const QString renamed = projectFiles() + QStringLiteral("Renamed%1.corvelpro").arg(pair);
        require(QFile::rename(old, renamed), "cannot rename " + old);
        settle();
        changed.plain.milliseconds.append(busyDuring([&] {
            plain.scan();
            plain.fill();
        }));
        // The panel's watcher reports too; renaming the file back restores its list.
        changed.ours.milliseconds.append(busyDuring([&] { ours.rescan(); }, &longest));
        compareTables(plain.table, ours.table, rows);
    }
    report.faster(QStringLiteral("rescan of %1, one changed").arg(rows), "every row anew", changed, 15);
    report.atMost("  longest pause of the user interface", longest, "ms", 50);
}

} // namespace

int main(int argc, char *argv[])
{
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The offscreen platform and a panel without devices log a lot.
    qputenv("QT_LOGGING_RULES", "default=false");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
    Application application(argc, argv);
    Core::applyLook();
    Report report(application.arguments());
    if (report.isWanted("fill"))
        fill(report, 1000);
    if (report.isWanted("rescan"))
        rescan(report, 1000);
    return report.allMet() ? 0 : 1;
}
