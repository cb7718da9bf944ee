// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <engineerdocbackup.h>
#include <engineerdocload.h>
#include <projectlist.h>
#include <zippackagehandle.h>

#include <data/hostilepackages.h>
#include <support/answerbook.h>
#include <support/costs.h>
#include <support/customsite.h>
#include <support/leaksoflibrary.h>
#include <support/paneltesting.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <model/serailizer.h>
#include <simulation/journal.h>

#include <QDirIterator>

#include <functional>
#include <malloc.h>
#include <optional>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using TestData::HostilePackage;

namespace {
const QString onlineIp = QString::fromLatin1(TestData::onlineAddress);
const QString offlineIp = QString::fromLatin1(TestData::offlineAddress);

/// The row of README.md for one package.
struct Expectation
{
    QString listed;
    QString online;
    QString offline;
    QString edited;
};

/// The rows of the table, in their order: "| `name` | listed | online | offline | edited | why |".
QVector<QPair<QByteArray, Expectation>> readTable()
{
    QVector<QPair<QByteArray, Expectation>> rows;
    QFile file(QStringLiteral(TEST_DATA_DIRECTORY "/README.md"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("No table: %s", qPrintable(file.errorString()));
    while (!file.atEnd()) {
        const QStringList cells = QString::fromUtf8(file.readLine()).trimmed().split(QLatin1Char('|'));
        if (cells.size() < 7 || !cells.at(1).trimmed().startsWith(QLatin1Char('`')))
            continue;
        const auto cell = [&cells](int column) { return cells.at(column).trimmed(); };
        rows.append({cell(1).remove(QLatin1Char('`')).toUtf8(), {cell(2), cell(3), cell(4), cell(5)}});
    }
    return rows;
}

QString yesNo(bool yes)
{
    return yes ? QStringLiteral("yes") : QStringLiteral("no");
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size() && file.flush();
}

// ---------------------------------------------------------------------------------------------------------------------
// Files touched by an operation

/// Everything below a folder: type, size, modification time, link target.
using Snapshot = QMap<QString, QString>;

QString stateOf(const QString &path)
{
    struct stat status;
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return QStringLiteral("gone");
    QString state =
        QStringLiteral("mode %1, inode %2").arg(QString::number(status.st_mode, 8), QString::number(status.st_ino));
    // A folder's size means nothing; its time shows additions and removals.
    state += QStringLiteral(", changed %1.%2")
                 .arg(QString::number(status.st_mtim.tv_sec), QString::number(status.st_mtim.tv_nsec));
    if (!S_ISDIR(status.st_mode))
        state += QStringLiteral(", %1 bytes").arg(status.st_size);
    if (S_ISLNK(status.st_mode))
        state += QStringLiteral(", to ") + QFile::symLinkTarget(path);
    return state;
}

/// Leaves out `mayChange`: files, and folders with everything in them.
Snapshot snapshot(const QString &root, const QStringList &mayChange)
{
    Snapshot found;
    const std::function<void(const QString &)> walk = [&](const QString &folder) {
        found.insert(folder, stateOf(folder));
        const QStringList names =
            QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString &name : names) {
            const QString path = folder + QLatin1Char('/') + name;
            if (mayChange.contains(path))
                continue;
            if (QFileInfo(path).isDir() && !QFileInfo(path).isSymLink())
                walk(path);
            else
                found.insert(path, stateOf(path));
        }
    };
    walk(root);
    return found;
}

QString difference(const Snapshot &before, const Snapshot &after)
{
    QString text;
    for (auto it = before.begin(); it != before.end(); ++it) {
        if (after.value(it.key()) != it.value())
            text += QStringLiteral("\n%1: was %2; is %3")
                        .arg(it.key(), it.value(), after.value(it.key(), QStringLiteral("gone")));
    }
    for (auto it = after.begin(); it != after.end(); ++it) {
        if (!before.contains(it.key()))
            text += QStringLiteral("\n%1: is new").arg(it.key());
    }
    return text;
}

/// During its lifetime the libraries may log warnings about what they read.
class LibraryNoise
{
    const ExpectMessage m_expected{QtWarningMsg,
                                   QRegularExpression(QStringLiteral("^libpng |^QFile::at: Cannot set file position")),
                                   ExpectMessage::AnyNumber};
};

} // namespace

/// Every package of tests/data against every operation that can encounter it.
class TstHostilePackages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void table_and_recipe_name_the_same_packages();
    void the_honest_package_is_applied_to_both_devices();
    void operation_ends_as_the_table_says_data();
    void operation_ends_as_the_table_says();
    void online_device_gets_everything_or_stays_unchanged_data();
    void online_device_gets_everything_or_stays_unchanged();
    void first_of_two_aliased_names_counts_data();
    void first_of_two_aliased_names_counts();
    void non_utf8_names_stay_distinct();
    void after_many_packages_the_device_can_be_saved();
    void too_many_entries_together_are_refused_before_writing();
    void special_files_are_refused_data();
    void special_files_are_refused();
    void panel_imports_and_lists_by_the_table();

private:
    /// A fresh site and, in its own folder, the package. Nothing else below the test's home may change.
    void setUp(const HostilePackage &package);
    QString list() const;
    QString edit();
    QString apply(const QString &packagePath, const QString &ip) const;
    /// The package of that name.
    const HostilePackage &named(const QByteArray &name) const;
    /// The result code of a save of the offline device; for 0 the package must be valid.
    QString save() const;
    /// The outcome in the table's words; `m_costs` has its cost.
    QString operate(const QString &operation);
    template<typename Operation>
    auto measured(const Operation &operation)
    {
        m_costs.emplace();
        const auto result = operation();
        m_costs->stop();
        return result;
    }
    QStringList mayChange(const QString &operation) const;

    QVector<HostilePackage> m_packages;
    /// Caches the last one: some take longer to create than to refuse.
    QPair<QByteArray, QByteArray> m_made;
    QString m_root;
    QString m_package;
    QString m_honestPackage;
    std::optional<CustomSite> m_site;
    std::optional<Costs> m_costs;
    double m_longest = 0;
    qint64 m_largest = 0;
};

void TstHostilePackages::initTestCase()
{
    m_packages = TestData::hostilePackages();
    // Deep enough that most escapes still end inside the compared folder.
    m_root = QDir::homePath();
    const QString temporary = m_root + QStringLiteral("/a/b/c/d");
    QVERIFY(QDir().mkpath(temporary));
    qputenv("TMPDIR", QFile::encodeName(temporary));
    QVERIFY(writeFile(m_root + QStringLiteral("/a/b/c/d/victim/file.png"), "a file that nobody may touch"));
    m_honestPackage = m_root + QStringLiteral("/honest.corvelpro");
    QVERIFY(writeFile(m_honestPackage, TestData::honestPackage()));
}

void TstHostilePackages::cleanup()
{
    m_site.reset();
    if (!m_package.isEmpty())
        QDir(QFileInfo(m_package).path()).removeRecursively();
    m_package.clear();
    QVERIFY2(!QFile::exists(QString::fromLatin1(TestData::absoluteEscape)), "a file got out of the folders");
}

void TstHostilePackages::cleanupTestCase()
{
    if (costsCount)
        qInfo("At most %.1f s and %lld MiB in one operation", m_longest, static_cast<long long>(m_largest));
}

void TstHostilePackages::setUp(const HostilePackage &package)
{
    m_site.emplace(QVector<CustomDevice>{{plainDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    QVERIFY(Model::Serailizer(m_site->configPath()).serailize());
    m_package = m_root + QStringLiteral("/package/hostile.corvelpro");
    if (m_made.first != package.name)
        m_made = {package.name, package.bytes()};
    QVERIFY(writeFile(m_package, m_made.second));
    if (package.linksInTheWay) {
        const QString victim = m_root + QStringLiteral("/a/b/c/d/victim");
        for (const QString &folder : {m_site->extractPath(), m_site->devicePath(offlineIp)}) {
            QVERIFY(QDir().mkpath(folder));
            QVERIFY(QFile::link(victim, folder + QStringLiteral("/linked")));
            QVERIFY(QFile::link(victim + QStringLiteral("/file.png"), folder + QStringLiteral("/linked.png")));
            QVERIFY(QFile::link(victim + QStringLiteral("/file.png"), folder + QStringLiteral("/linked.json")));
        }
    }
}

QString TstHostilePackages::list() const
{
    ProjectList list;
    list.scanProjectFiles(QFileInfo(m_package).path(), list.beginScan());
    return yesNo(list.listProjects.size() == 1 && list.listProjects.first().strFilePath == m_package);
}

/// Like the panel; only the record may change.
QString TstHostilePackages::edit()
{
    EngineerPacketInfo before;
    before.strFilePath = m_package;
    const bool wasListed = ZipPackageHandle::getZipFileEngineerInfo(before);
    const QStringList entries = ZipPackageHandle::getFileList(m_package);
    const QString record = QString::fromUtf8(
        PackageBuilder::infoRecord(before.strChecksum, QStringLiteral("edited"), QStringLiteral("new")));
    QFile file(m_package);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("unreadable");
    const QByteArray bytes = file.readAll();
    file.close();

    const bool edited = measured([&] { return ZipPackageHandle::setZipComment(m_package, record); });

    if (QDir(QFileInfo(m_package).path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size() != 1)
        return QStringLiteral("a fragment is left");
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("gone");
    const QByteArray bytesAfter = file.readAll();
    if (!edited)
        return bytesAfter == bytes ? yesNo(false) : QStringLiteral("failed and changed the package");
    EngineerPacketInfo after;
    after.strFilePath = m_package;
    if (ZipPackageHandle::getZipFileEngineerInfo(after) != wasListed)
        return wasListed ? QStringLiteral("no longer valid") : QStringLiteral("valid all of a sudden");
    if (after.strProjectName != QStringLiteral("edited") || after.strComment != QStringLiteral("new"))
        return QStringLiteral("another record");
    if (ZipPackageHandle::getFileList(m_package) != entries)
        return QStringLiteral("other entries");
    return yesNo(true);
}

/// The job's result code, or "-" if it refuses the package without one.
QString TstHostilePackages::apply(const QString &packagePath, const QString &ip) const
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(packagePath);
    if (!job.checkPackageFile())
        return job.resultCode() == LoadSuccess ? QStringLiteral("-") : QString::number(job.resultCode());
    if (!job.checkDevice())
        return QString::number(job.resultCode());
    job.start(QThread::InheritPriority);
    job.wait();
    return QString::number(job.resultCode());
}

QString TstHostilePackages::operate(const QString &operation)
{
    if (operation == QStringLiteral("edit"))
        return edit();
    return measured([&] {
        if (operation == QStringLiteral("list"))
            return list();
        if (operation == QStringLiteral("import"))
            return yesNo(ZipPackageHandle::isValidEngineerPacket(m_package));
        if (operation == QStringLiteral("check"))
            return yesNo(ZipPackageHandle::checkPacketChecksum(m_package));
        return apply(m_package, operation == QStringLiteral("apply online") ? onlineIp : offlineIp);
    });
}

QStringList TstHostilePackages::mayChange(const QString &operation) const
{
    if (operation == QStringLiteral("edit"))
        return {QFileInfo(m_package).path()};
    if (operation == QStringLiteral("apply online"))
        return {m_site->extractPath()};
    // The host writes the descriptions of all devices, each into its own folder.
    if (operation == QStringLiteral("apply offline"))
        return {m_site->extractPath(), m_site->devicePath(offlineIp), m_site->devicePath(onlineIp)};
    return QStringList();
}

// ---------------------------------------------------------------------------------------------------------------------

void TstHostilePackages::table_and_recipe_name_the_same_packages()
{
    QVector<QByteArray> inTable;
    for (const auto &row : readTable())
        inTable.append(row.first);
    QVector<QByteArray> inRecipe;
    for (const HostilePackage &package : TestData::hostilePackages())
        inRecipe.append(package.name);
    for (const QByteArray &name : qAsConst(inRecipe))
        QCOMPARE(inRecipe.count(name), 1);
    for (int number = 0; number < qMin(inTable.size(), inRecipe.size()); ++number)
        QCOMPARE(inTable.at(number), inRecipe.at(number));
    QCOMPARE(inTable.size(), inRecipe.size());
    QVERIFY(inRecipe.size() >= 120);
}

void TstHostilePackages::the_honest_package_is_applied_to_both_devices()
{
    setUp({"honest", TestData::honestPackage});
    QCOMPARE(apply(m_honestPackage, onlineIp), QStringLiteral("0"));
    QCOMPARE(apply(m_honestPackage, offlineIp), QStringLiteral("0"));
    QCOMPARE((*m_site)->hardware(onlineIp)->state().backgrounds.size(), 1);
    QVERIFY(QFile::exists(m_site->devicePath(offlineIp) + QStringLiteral("/LOGO/LOGO_2.png")));
}

void TstHostilePackages::operation_ends_as_the_table_says_data()
{
    QTest::addColumn<int>("package");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("outcome");

    QMap<QByteArray, Expectation> table;
    for (const auto &row : readTable())
        table.insert(row.first, row.second);
    for (int number = 0; number < m_packages.size(); ++number) {
        if (m_packages.at(number).onlyLarger && !costsCount)
            continue;
        const QByteArray &name = m_packages.at(number).name;
        const Expectation expected = table.value(name);
        const auto row = [&](const char *operation, const QString &outcome) {
            QTest::addRow("%s: %s", name.constData(), operation) << number << QString::fromLatin1(operation) << outcome;
        };
        row("list", expected.listed);
        row("import", expected.listed);
        row("check", expected.listed);
        row("apply online", expected.online);
        row("apply offline", expected.offline);
        row("edit", expected.edited);
    }
}

void TstHostilePackages::operation_ends_as_the_table_says()
{
    QFETCH(int, package);
    QFETCH(QString, operation);
    QFETCH(QString, outcome);
    const LibraryNoise noise;
    setUp(m_packages.at(package));
    const Snapshot before = snapshot(m_root, mayChange(operation));
    const QStringList foldersBefore =
        QDir(m_site->devicePath(onlineIp)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);

    const QString came = [&] {
        const TestSupport::LeaksOfLibrary leaks(m_packages.at(package).libraryLeaks);
        return operate(operation);
    }();

    QCOMPARE(came, outcome);
    const QString changes = difference(before, snapshot(m_root, mayChange(operation)));
    QVERIFY2(changes.isEmpty(), qPrintable(changes));
    QCOMPARE(QDir(m_site->devicePath(onlineIp)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System),
             foldersBefore);
    QDirIterator fragments(m_site->path(), {QStringLiteral("*.part")}, QDir::Files | QDir::Hidden,
                           QDirIterator::Subdirectories);
    QVERIFY2(!fragments.hasNext(), "a fragment is left");
    if (costsCount) {
        QVERIFY2(m_costs->seconds < 10, qPrintable(QStringLiteral("%1 s").arg(m_costs->seconds)));
        QVERIFY2(m_costs->mebibytes <= 256, qPrintable(QStringLiteral("%1 MiB").arg(m_costs->mebibytes)));
    }
    m_longest = qMax(m_longest, m_costs->seconds);
    m_largest = qMax(m_largest, m_costs->mebibytes);

    // Nothing remains that harms later operations.
    if (operation.startsWith(QStringLiteral("apply")) && !m_packages.at(package).linksInTheWay)
        QCOMPARE(apply(m_honestPackage, operation == QStringLiteral("apply online") ? onlineIp : offlineIp),
                 QStringLiteral("0"));
}

void TstHostilePackages::online_device_gets_everything_or_stays_unchanged_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<QString>("outcome");
    QMap<QByteArray, Expectation> table;
    for (const auto &row : readTable())
        table.insert(row.first, row.second);
    for (const HostilePackage &package : TestData::shareOfHostilePackages())
        QTest::addRow("%s", package.name.constData()) << package.name << table.value(package.name).online;
}

/// Through the panel, which resets the device in between.
void TstHostilePackages::online_device_gets_everything_or_stays_unchanged()
{
    QFETCH(QByteArray, package);
    QFETCH(QString, outcome);
    static const QHash<QString, QString> texts{
        {QStringLiteral("3"), QStringLiteral("Input or output card mismatch")},
        {QStringLiteral("5"), QStringLiteral("Failed to get device information")},
        {QStringLiteral("6"), QStringLiteral("Failed to decompress file")},
        {QStringLiteral("8"), QStringLiteral("Incorrect JSON file")},
        {QStringLiteral("10"), QStringLiteral("Device type mismatch")},
        {QStringLiteral("11"), QStringLiteral("Incorrect file content")},
        {QStringLiteral("12"), QStringLiteral("Protocol version mismatch")},
        {QStringLiteral("15"), QStringLiteral("Incorrect gallery file.")}};
    const LibraryNoise noise;
    const TestSupport::LeaksOfLibrary leaks(named(package).libraryLeaks);
    setUp(named(package));
    const std::shared_ptr<Simulation::Hardware> hardware = (*m_site)->hardware(onlineIp);
    hardware->setState(richDevice(onlineIp));
    const Simulation::HardwareState before = hardware->state();
    QVERIFY(PanelTesting::clearProjectFilesDirectory());
    const PanelTesting::Panel panel;
    panel->show();
    PanelTesting::settle();

    AnswerBook book;
    book.expectFileDialog(QStringLiteral("Project file"), {m_package});
    if (outcome != QStringLiteral("-")) {
        book.expectQuestion(QStringLiteral("Remind"), QString(), QMessageBox::No);
        if (outcome != QStringLiteral("0"))
            book.expectWarning(QStringLiteral("Remind"), texts.value(outcome, QStringLiteral("an unknown code")));
    } else {
        book.expectWarning(QStringLiteral("Remind"),
                           QStringLiteral("The file does not exist or the file format is incorrect."));
    }
    Simulation::Journal::instance()->clear();
    click(panel.applyOthers());
    const auto isAtRest = [&] {
        const auto types = Simulation::Journal::instance()->entries(Simulation::Operations::setOperatorType);
        const bool isIdle = types.isEmpty() || types.last().arguments.value(QStringLiteral("type")).toString() ==
                                                   QStringLiteral("OperatorNone");
        return book.isSatisfied() && isIdle;
    };
    QTRY_VERIFY2_WITH_TIMEOUT(isAtRest(), qPrintable(book.report()), 120000);
    PanelTesting::settle();
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    if (outcome == QStringLiteral("0")) {
        QVERIFY(hardware->state() != before);
        return;
    }
    const QStringList differences = hardware->state().differencesTo(before);
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
    QCOMPARE(Simulation::Journal::instance()->count(Simulation::Operations::updateDeviceInfo), 0);
}

const HostilePackage &TstHostilePackages::named(const QByteArray &name) const
{
    const auto found = std::find_if(m_packages.begin(), m_packages.end(),
                                    [&name](const HostilePackage &package) { return package.name == name; });
    if (found == m_packages.end())
        qFatal("No package is called %s", name.constData());
    return *found;
}

QString TstHostilePackages::save() const
{
    const QString folder = m_root + QStringLiteral("/saved/");
    if (!QDir(folder).removeRecursively() || !QDir().mkpath(folder))
        return QStringLiteral("no folder");
    EngineerDocBackup job(nullptr, offlineIp);
    job.setProjectPath(folder);
    job.setProjectInfo(QStringLiteral("saved"), QString());
    job.start();
    job.wait();
    if (job.resultCode() == BackupSuccess &&
        !ZipPackageHandle::isValidEngineerPacket(folder + QStringLiteral("saved.corvelpro")))
        return QStringLiteral("no valid package");
    return QString::number(job.resultCode());
}

void TstHostilePackages::first_of_two_aliased_names_counts_data()
{
    QTest::addColumn<QByteArray>("package");
    for (const HostilePackage &package : qAsConst(m_packages)) {
        if (package.name.startsWith("alias_"))
            QTest::newRow(package.name) << package.name;
    }
}

void TstHostilePackages::first_of_two_aliased_names_counts()
{
    QFETCH(QByteArray, package);
    setUp(named(package));
    QCOMPARE(apply(m_package, offlineIp), QStringLiteral("0"));
    if (package != "alias_of_the_description")
        QCOMPARE(QImage(m_site->devicePath(offlineIp) + QStringLiteral("/BKG/BKG_1.png")).size(), QSize(16, 9));
    QCOMPARE(apply(m_package, onlineIp), QStringLiteral("0"));
    if (package != "alias_of_the_description")
        QCOMPARE((*m_site)->hardware(onlineIp)->state().backgrounds.value(1).pixels.size(), QSize(16, 9));
}

void TstHostilePackages::non_utf8_names_stay_distinct()
{
    setUp(named("names_that_are_no_utf8_decode_alike"));
    QCOMPARE(apply(m_package, offlineIp), QStringLiteral("0"));
    QStringList contents;
    const QDir folder(m_site->devicePath(offlineIp) + QStringLiteral("/Preset"));
    for (const QString &name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        if (name != QStringLiteral("1.RPst"))
            contents.append(QString::fromLatin1(file.readAll()));
    }
    contents.sort();
    QCOMPARE(contents, QStringList({QStringLiteral("one"), QStringLiteral("three"), QStringLiteral("two")}));
}

void TstHostilePackages::after_many_packages_the_device_can_be_saved()
{
    const LibraryNoise noise;
    QMap<QByteArray, Expectation> table;
    for (const auto &row : readTable())
        table.insert(row.first, row.second);
    setUp({"replaced below", [] { return QByteArray(); }});
    int applied = 0;
    const QVector<HostilePackage> share = TestData::shareOfHostilePackages();
    for (const HostilePackage &package : share) {
        // The slow ones have tests of their own.
        if (package.linksInTheWay || package.libraryLeaks || package.name.contains("entries_are_"))
            continue;
        if (table.value(package.name).offline != QStringLiteral("0"))
            continue;
        QVERIFY(writeFile(m_package, package.bytes()));
        // An earlier package may have left a file in place of this one's folder: then it is refused as a whole.
        const QString code = apply(m_package, offlineIp);
        QVERIFY2(code == QStringLiteral("0") || code == QStringLiteral("6"),
                 package.name + " ends with " + code.toUtf8());
        applied += code == QStringLiteral("0");
    }
    QVERIFY(applied > share.size() / 4);
    QCOMPARE(save(), QStringLiteral("0"));
    QCOMPARE(apply(m_root + QStringLiteral("/saved/saved.corvelpro"), offlineIp), QStringLiteral("0"));
}

void TstHostilePackages::too_many_entries_together_are_refused_before_writing()
{
    SKIP_WHERE_COSTS_DO_NOT_COUNT();
    setUp(named("entries_are_33000"));
    QCOMPARE(apply(m_package, offlineIp), QStringLiteral("0"));
    QCOMPARE(save(), QStringLiteral("0"));
    QVERIFY(writeFile(m_package, named("other_entries_are_33000").bytes()));
    const auto files = [this] {
        const QString folder = m_site->devicePath(offlineIp);
        QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        QMap<QString, QDateTime> found;
        while (walk.hasNext()) {
            const QString path = walk.next();
            found.insert(path, walk.fileInfo().lastModified());
        }
        // The model is replaced all the same, and the host writes its description.
        found.remove(folder + QLatin1Char('/') + offlineIp + QStringLiteral(".json"));
        return found;
    };
    const QMap<QString, QDateTime> before = files();
    QVERIFY(before.size() > 33000);
    QCOMPARE(apply(m_package, offlineIp), QStringLiteral("6"));
    QVERIFY(files() == before);
    QCOMPARE(save(), QStringLiteral("0"));
}

void TstHostilePackages::special_files_are_refused_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("throughLink");
    for (const bool throughLink : {false, true}) {
        for (const char *kind : {"folder", "socket", "/dev/zero", "missing"})
            QTest::addRow("%s%s", kind, throughLink ? " behind a link" : "")
                << QString::fromLatin1(kind) << throughLink;
    }
}

void TstHostilePackages::special_files_are_refused()
{
    QFETCH(QString, kind);
    QFETCH(bool, throughLink);
    setUp({"replaced below", [] { return QByteArray(); }});
    QVERIFY(QFile::remove(m_package));
    const QString object = throughLink ? QFileInfo(m_package).path() + QStringLiteral("/object") : m_package;
    const QByteArray nativeObject = QFile::encodeName(object);
    if (kind == QStringLiteral("folder")) {
        QVERIFY(QDir().mkpath(object));
    } else if (kind == QStringLiteral("socket")) {
        const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        QVERIFY(nativeObject.size() < int(sizeof address.sun_path));
        qstrcpy(address.sun_path, nativeObject.constData());
        QCOMPARE(bind(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        close(handle);
    } else if (kind != QStringLiteral("missing")) {
        QVERIFY(QFile::link(kind, object));
    }
    if (throughLink)
        QVERIFY(QFile::link(object, m_package));

    const Snapshot before = snapshot(m_root, QStringList());
    QCOMPARE(list(), QStringLiteral("no"));
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_package));
    QVERIFY(!ZipPackageHandle::setZipComment(m_package, QStringLiteral("x")));
    QCOMPARE(ZipPackageHandle::getFileList(m_package), QStringList());
    const QString expected = kind == QStringLiteral("missing") ? QStringLiteral("2") : QStringLiteral("-");
    QCOMPARE(apply(m_package, onlineIp), expected);
    QCOMPARE(apply(m_package, offlineIp), expected);
    const QString changes = difference(before, snapshot(m_root, QStringList()));
    QVERIFY2(changes.isEmpty(), qPrintable(changes));
}

void TstHostilePackages::panel_imports_and_lists_by_the_table()
{
    const LibraryNoise noise;
    // Those that could trip a scan, a table or a box.
    const QVector<QByteArray> kinds{"record_", "comment_", "cut_", "end_record_", "junk_", "zip64_", "file_is_"};
    const TestSupport::TestSite site;
    QVERIFY(PanelTesting::clearProjectFilesDirectory());
    QMap<QByteArray, Expectation> table;
    for (const auto &row : readTable())
        table.insert(row.first, row.second);
    QStringList valid;
    QStringList invalid;
    for (const HostilePackage &package : qAsConst(m_packages)) {
        const auto isOfKind = [&package](const QByteArray &kind) { return package.name.startsWith(kind); };
        if (std::none_of(kinds.begin(), kinds.end(), isOfKind))
            continue;
        const QString path = m_root + QStringLiteral("/elsewhere/%1.corvelpro").arg(QString::fromLatin1(package.name));
        if (package.libraryLeaks)
            continue;
        QVERIFY(writeFile(path, package.bytes()));
        (table.value(package.name).listed == QStringLiteral("yes") ? valid : invalid).append(path);
    }
    QVERIFY(valid.size() > 20 && invalid.size() > 20);
    QStringList expectedNames;
    for (const QString &path : qAsConst(valid))
        expectedNames.append(QFileInfo(path).baseName());
    expectedNames.sort();
    const auto listedNames = [](const PanelTesting::Panel &panel) {
        QStringList names = panel.names();
        names.sort();
        return names;
    };

    const PanelTesting::Panel panel;
    panel->show();
    PanelTesting::settle();
    AnswerBook book;
    const QString chooserTitle = QStringLiteral("Project file");
    book.expectFileDialog(chooserTitle, valid);
    book.expectInformation(QStringLiteral("Remind"), QStringLiteral("Import as success"));
    click(panel.importProject());
    QTRY_VERIFY2_WITH_TIMEOUT(book.isSatisfied(), qPrintable(book.report()), 60000);
    PanelTesting::settle();
    QCOMPARE(listedNames(panel), expectedNames);
    for (const QString &path : qAsConst(invalid)) {
        book.expectFileDialog(chooserTitle, {path});
        book.expectWarning(QStringLiteral("Warning"), QStringLiteral("The file[%1] context is invalid.").arg(path));
        click(panel.importProject());
        QTRY_VERIFY2_WITH_TIMEOUT(book.isSatisfied(), qPrintable(book.report()), 60000);
    }
    // Copied in by hand they are not listed either.
    for (const QString &path : qAsConst(invalid))
        QVERIFY(QFile::copy(path, PanelTesting::projectFilesPath() + QFileInfo(path).fileName()));
    panel.rescan();
    QCOMPARE(listedNames(panel), expectedNames);
}

TEST_MAIN(TstHostilePackages)
#include "tst_hostilepackages.moc"
