// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerdocbackup.h"
#include "packagechecksum.h"
#include "packagereader.h"
#include "projectlist.h"
#include "zippackagehandle.h"

#include <simulation/journal.h>
#include <support/customsite.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <memory>
#include <random>
#include <vector>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

// A save that reports success has made a package that the list shows and four other readers accept, and editing keeps
// it so: checked with generated trees, names and comments.
//
// Environment variables select how many and which, see scripts/verify-saves:
//     VERIFY_SAVES_COUNT  how many trees (300)
//     VERIFY_SAVES_SEED   the generator's seed (1)
//     VERIFY_SAVES_FIRST  the number of the first tree (0)
// A tree depends only on seed and number, not on earlier trees.

namespace {

constexpr int edits = 20;
constexpr int batchSize = 25;
/// QuaZip finds the end record only up to this comment length.
constexpr int maxRecordSize = 65513;

int setting(const char *name, int fallback)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : fallback;
}

/// The required contents of a package: each entry's name, size and CRC.
using Contents = QMap<QString, QPair<qint64, quint32>>;

class Generator
{
public:
    Generator(quint32 seed, quint32 number)
    {
        std::seed_seq seeds{seed, number};
        m_random.seed(seeds);
    }

    int below(int limit) { return int(m_random.bounded(limit)); }
    bool oneIn(int count) { return below(count) == 0; }
    /// Small numbers as often as large ones.
    int spread(int limit)
    {
        const int bits = below(32 - int(qCountLeadingZeroBits(quint32(limit))) + 1);
        return qMin(limit, bits == 0 ? 0 : (1 << (bits - 1)) + below(1 << (bits - 1)));
    }

    QByteArray bytes(int size)
    {
        switch (below(4)) {
        case 0:
            return QByteArray(size, char(below(2) * 255));
        case 1:
            return QByteArray("{ \"some\": \"text\", \"again\": 0 }\n").repeated(size / 20 + 1).left(size);
        default:
            return noise(size, quint32(m_random.generate())).left(size);
        }
    }

    QString text(int length)
    {
        QString result;
        const QString script =
            oneOf({"abcdefghijklmnopqrstuvwxyz ABCXYZ0123456789-_.,;+=~@#%&()'", "äöüßéèñçøåžłőŧŋ",
                   "设备图片背景徽标预设工程文件舞台灯光", "プロジェクトファイル背景", "프로젝트파일배경",
                   "проектустройствофон", "έργοσυσκευήφόντο", "مشروعجهازخلفية", "פרויקטהתקןרקע", "परियोजनाउपकरण",
                   "โครงการอุปกรณ์", "🎬🎭🎸🎤🎧🎥🎞🎟🎪",
                   "e\u0301n\u0303u\u0308\u200B\u200D\u202Eabc\uFEFF"});
        const QVector<uint> characters = script.toUcs4();
        while (result.size() < length) {
            const uint character = characters.at(below(characters.size()));
            result += QString::fromUcs4(&character, 1);
        }
        return result;
    }

    /// Names that a file can have and no reader takes for a path. The product takes "c:x" for one, so it is left out.
    QString fileName()
    {
        const QString name = trimmedTo(text(1 + spread(60)), 240);
        QString odd = name;
        if (oneIn(20))
            odd = oneOf({"*",    "?",   "[x]",      "ab:c",      "\"quoted\"", "<>|",  "$HOME",
                         "`id`", "-rf", " leading", "trailing ", "trailing.",  "...",  "CON",
                         "a\nb", "~",   "%41",      "x.json",    "y.JSON",     "z.zip"}) +
                  name;
        if (odd.trimmed() == "..")
            odd.prepend('x');
        return oneIn(8) && !odd.startsWith('.') ? '.' + odd : odd;
    }

    /// A project name that the dialog accepts, made unique by `number`.
    QString projectName(int number)
    {
        QString name = trimmedTo(text(spread(40)), 50).trimmed();
        while (name.startsWith('.'))
            name.remove(0, 1);
        return name + QString::number(number);
    }

    QString comment(int length)
    {
        QString result = text(length);
        if (oneIn(4) && length > 0) {
            int at = below(result.size());
            at -= result.at(at).isLowSurrogate() ? 1 : 0;
            result.insert(
                at, oneOf({"\"", "\\", "\n", "\t", "PK\u0005\u0006", "</p>", "{\"Checksum\": \"\"}", "\u0001", "%1"}));
        }
        return result;
    }

    QString oneOf(const QStringList &choice) { return choice.at(below(choice.size())); }

    static QString trimmedTo(QString text, int bytes)
    {
        while (text.toUtf8().size() > bytes)
            text.chop(text.at(text.size() - 1).isLowSurrogate() ? 2 : 1);
        return text;
    }

private:
    QRandomGenerator m_random;
};

quint32 crcOf(const QString &path)
{
    // Never packed, so PackageBuilder's reader is enough.
    return PackageBuilder::crc32(readFile(path));
}

/// A device's directory: files of all kinds in folders, some empty, hidden or linked.
class Tree
{
public:
    Tree(const QString &root, Generator &generator)
        : m_root(root)
        , m_generator(generator)
    {
        m_folders.append(QString());
        const int folders = generator.oneIn(3) ? 0 : generator.spread(12);
        for (int i = 0; i < folders; ++i)
            addFolder();
        const int files = generator.oneIn(200) ? 2000 : generator.spread(24);
        for (int i = 0; i < files; ++i)
            addFile(generator.oneIn(100) ? 300000 : 20000);
        if (generator.oneIn(5))
            addLink();
    }

    /// A stored picture that pads the archive to the desired length.
    void setFiller(qint64 size, bool sparse)
    {
        const QString name = QStringLiteral("BKG/BKG_255.png");
        m_contents.insert(QStringLiteral("BKG/"), {});
        QFile file(m_root + '/' + name);
        if (!QDir().mkpath(m_root + "/BKG") || !file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot make %s", qPrintable(file.fileName()));
        const bool written = sparse ? file.resize(size) : file.write(QByteArray(int(size), '\xFF')) == size;
        if (!written || !file.flush())
            qFatal("cannot fill %s", qPrintable(file.fileName()));
        m_contents.insert(name, {size, crcOf(file.fileName())});
    }

    /// The job's own entries.
    Contents contents(const QString &description) const
    {
        Contents all = m_contents;
        all.insert(QStringLiteral("Preset/"), {});
        const QString path = m_root + '/' + description;
        all.insert(description, {QFileInfo(path).size(), crcOf(path)});
        return all;
    }

private:
    QString freeName(const QString &extension = QString())
    {
        const QString folder = m_folders.at(m_generator.below(m_folders.size()));
        for (;;) {
            const QString name = folder + m_generator.fileName() + extension;
            if (!QFileInfo::exists(m_root + '/' + name) && (m_root + name).toUtf8().size() < 3000)
                return name;
        }
    }

    void addFolder()
    {
        const QString name = freeName() + '/';
        if (!QDir().mkpath(m_root + '/' + name))
            qFatal("cannot make %s", qPrintable(name));
        m_folders.append(name);
        m_contents.insert(name, {});
    }

    void addFile(int largest)
    {
        const QString name = freeName(m_generator.oneOf({".png", ".PNG", ".bin", ""}));
        const QByteArray bytes = m_generator.bytes(m_generator.spread(largest));
        if (!writeFile(m_root + '/' + name, bytes))
            qFatal("cannot make %s", qPrintable(name));
        m_contents.insert(name, {bytes.size(), PackageBuilder::crc32(bytes)});
        QFile file(m_root + '/' + name);
        if (m_generator.oneIn(4) && file.open(QIODevice::ReadWrite)) {
            // From before the epoch of zip times to after their end.
            const qint64 time = qint64(m_generator.below(1 << 30)) * 5;
            file.setFileTime(QDateTime::fromSecsSinceEpoch(time), QFileDevice::FileModificationTime);
            file.close();
        }
        if (m_generator.oneIn(8))
            file.setPermissions(QFile::ReadOwner | (m_generator.oneIn(2) ? QFile::ExeOwner : QFile::ReadOther));
        m_files.append(name);
    }

    void addLink()
    {
        if (m_files.isEmpty())
            return;
        const QString target = m_files.at(m_generator.below(m_files.size()));
        const QString name = freeName(QStringLiteral(".link"));
        if (!QFile::link(m_root + '/' + target, m_root + '/' + name))
            qFatal("cannot link %s", qPrintable(name));
        m_contents.insert(name, m_contents.value(target));
    }

    QString m_root;
    Generator &m_generator;
    QStringList m_folders;
    QStringList m_files;
    Contents m_contents;
};

/// One saved project, as the readers must find it.
struct Saved
{
    int number = 0;
    QString path;
    QString name;
    QString comment;
    QString checksum;
    Contents contents;
};

QByteArray recordOf(const QString &name, const QString &comment, const QString &checksum)
{
    return QJsonDocument(QJsonObject{{"Checksum", checksum}, {"projectName", name}, {"comment", comment}}).toJson();
}

int recordSize(const QString &name, const QString &comment)
{
    return recordOf(name, comment, QString(32, '0')).size();
}

/// Runs every reader over all packages of the folder at once; returns their complaints.
QString complaintsAboutAll(const QString &folder, const QVector<Saved> &saved, const QString &manifestPath)
{
    QJsonArray manifest;
    for (const Saved &project : saved) {
        QJsonObject entries;
        for (auto entry = project.contents.begin(); entry != project.contents.end(); ++entry)
            entries.insert(entry.key(), QJsonArray{entry->first, qint64(entry->second)});
        manifest.append(
            QJsonObject{{"path", project.path},
                        {"entries", entries},
                        {"comment", QString::fromUtf8(recordOf(project.name, project.comment, project.checksum))}});
    }
    if (!writeFile(manifestPath, QJsonDocument(manifest).toJson(QJsonDocument::Compact)))
        return QStringLiteral("no manifest");

    const QString python = "import json, sys, zipfile\n"
                           "bad = 0\n"
                           "with open(sys.argv[1], encoding='utf-8') as file:\n"
                           "    packages = json.load(file)\n"
                           "for package in packages:\n"
                           "    with zipfile.ZipFile(package['path']) as z:\n"
                           "        found = [(i.filename, [i.file_size, i.CRC]) for i in z.infolist()]\n"
                           "        said = []\n"
                           "        if len(dict(found)) != len(found) or dict(found) != package['entries']:\n"
                           "            said.append('entries')\n"
                           "        if z.comment != package['comment'].encode('utf-8'):\n"
                           "            said.append('comment')\n"
                           "        if z.testzip() is not None:\n"
                           "            said.append('content')\n"
                           "        if said:\n"
                           "            print(package['path'], said)\n"
                           "            bad = 1\n"
                           "sys.exit(bad)\n";
    const QString bsdtar = "bad=0\n"
                           "for f in ./*.corvelpro; do\n"
                           "    bsdtar -tf \"$f\" >/dev/null && bsdtar -xOf \"$f\" >/dev/null ||\n"
                           "        { echo \"$f\"; bad=1; }\n"
                           "done\n"
                           "exit $bad\n";
    struct Reader
    {
        QString program;
        QStringList arguments;
        /// Its output for each good package, and how often in total.
        QByteArray praise;
        int times;
    };
    const Reader readers[] = {
        {"unzip", {"-tq", "*.corvelpro"}, "No errors detected in compressed data of ", saved.size()},
        {"7z", {"t", "*.corvelpro"}, "Everything is Ok", saved.size()},
        {"python3", {"-W", "error", "-c", python, manifestPath}, QByteArray(), 0},
        {"sh", {"-c", bsdtar}, QByteArray(), 0},
    };
    // In parallel: each is a process of its own.
    std::vector<std::unique_ptr<QProcess>> processes;
    for (const Reader &reader : readers) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->setWorkingDirectory(folder);
        processes.back()->start(reader.program, reader.arguments);
    }
    QString all;
    for (std::size_t i = 0; i < processes.size(); ++i) {
        QProcess &process = *processes[i];
        const bool ended = process.waitForFinished(1200000) && process.exitStatus() == QProcess::NormalExit;
        const QByteArray output = process.readAllStandardOutput();
        const QByteArray errors = process.readAllStandardError();
        const bool praised = readers[i].praise.isEmpty() || output.count(readers[i].praise) == readers[i].times;
        const bool warned = readers[i].program == "7z" && output.toLower().contains("warning");
        if (!ended || process.exitCode() != 0 || !errors.isEmpty() || !praised || warned)
            all += readers[i].program + ": " + QString::number(ended ? process.exitCode() : -1) + ' ' +
                   QString::fromUtf8(output.right(2000) + errors.right(2000)) + '\n';
    }
    return all;
}

} // namespace

class TstVerifiedSaves : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void saved_packages_stay_listed_and_readable_when_edited_data();
    void saved_packages_stay_listed_and_readable_when_edited();
    void cleanupTestCase();

private:
    int save(const QString &name, const QString &comment) const;
    void generateAndSave(int number);
    void edit(Saved &project, Generator &generator);
    QString misread() const;
    QString notExtracted() const;
    QString replay(int number) const
    {
        return QStringLiteral("tree %1 of seed %2; again: VERIFY_SAVES_SEED=%2 VERIFY_SAVES_FIRST=%1 "
                              "VERIFY_SAVES_COUNT=1")
            .arg(QString::number(number), QString::number(m_seed));
    }

    const QString m_ip = QStringLiteral("10.0.0.7");
    quint32 m_seed = 1;
    QScopedPointer<CustomSite> m_site;
    QString m_projects;
    QVector<Saved> m_saved;

    int m_trees = 0;
    int m_refused = 0;
    int m_nearMultiples = 0;
    int m_edits = 0;
    int m_refusedEdits = 0;
    qint64 m_entries = 0;
};

void TstVerifiedSaves::initTestCase()
{
    m_seed = quint32(setting("VERIFY_SAVES_SEED", 1));
    qDebug().noquote() << "seed" << m_seed;
}

void TstVerifiedSaves::init()
{
    m_site.reset(new CustomSite({{plainDevice(m_ip), false}}));
    m_projects = m_site->path() + "/projects/";
    QVERIFY(QDir().mkpath(m_projects));
    m_saved.clear();
}

void TstVerifiedSaves::cleanup()
{
    m_site.reset();
    WarningGuard::clear();
}

int TstVerifiedSaves::save(const QString &name, const QString &comment) const
{
    EngineerDocBackup job(nullptr, m_ip);
    job.setProjectPath(m_projects);
    job.setProjectInfo(name, comment);
    job.start(QThread::InheritPriority);
    job.wait();
    return job.resultCode();
}

void TstVerifiedSaves::generateAndSave(int number)
{
    Generator generator(m_seed, quint32(number));
    const QString root = m_site->devicePath(m_ip);
    QVERIFY(QDir(root).removeRecursively());
    QVERIFY(QDir().mkpath(root));
    Tree tree(root, generator);

    Saved project;
    project.number = number;
    project.name = generator.projectName(number);
    project.path = m_projects + project.name + ".corvelpro";
    // Mostly lengths that the dialog accepts, else up to the format's limit and slightly more.
    project.comment = generator.comment(generator.oneIn(4) ? generator.spread(30000) : generator.below(101));
    if (generator.oneIn(10)) {
        const int missing = maxRecordSize - 3 + generator.below(7) - recordSize(project.name, project.comment);
        project.comment += QString(qMax(0, missing), 'c');
    }

    constexpr int nearMultipleEvery = 10;
    constexpr int residues = 100;
    if (number % nearMultipleEvery == 0) {
        // From 40 bytes below a multiple of the checksum's chunk to 59 above. Covers each remainder once in 100 turns,
        // starting just above the multiple, where the end record straddles it.
        const int turn = number / nearMultipleEvery;
        const int excess = (41 + 67 * (turn % residues)) % residues - 40;
        static const int multiples[] = {1, 1, 2, 1, 3, 1, 2, 1, 4, 1};
        const bool large = turn % 50 == 49;
        const int multiple = large ? 5 + turn / 50 % 20 : multiples[turn / residues % 10];
        const qint64 size = multiple * PackageChecksum::chunkSize + excess;
        tree.setFiller(0, true);
        QCOMPARE(save("measure", QString()), int(BackupSuccess));
        const QString measured = m_projects + "measure.corvelpro";
        const qint64 rest = QFileInfo(measured).size() - recordSize("measure", QString());
        QVERIFY(QFile::remove(measured));
        tree.setFiller(size - rest, multiple > 2 || generator.oneIn(2));
        ++m_nearMultiples;
    }

    ++m_trees;
    const QStringList before = ::contents(m_projects);
    const int code = save(project.name, project.comment);
    if (recordSize(project.name, project.comment) > maxRecordSize) {
        QCOMPARE(code, int(BackupEncryptFailed));
        QCOMPARE(::contents(m_projects), before);
        ++m_refused;
        return;
    }
    QCOMPARE(code, int(BackupSuccess));
    EngineerPacketInfo info;
    info.strFilePath = project.path;
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    project.checksum = info.strChecksum;
    project.contents = tree.contents(m_ip + ".json");
    m_entries += project.contents.size();
    m_saved.append(project);
}

// Like an edit in the panel: a new record with the checksum of the old one.
void TstVerifiedSaves::edit(Saved &project, Generator &generator)
{
    const QString name = generator.projectName(project.number);
    QString comment = generator.comment(generator.spread(generator.oneIn(4) ? 66000 : 100));
    if (generator.oneIn(10))
        comment += QString(qMax(0, maxRecordSize - 1 + generator.below(3) - recordSize(name, comment)), 'e');
    const bool fits = recordSize(name, comment) <= maxRecordSize;
    const QString record = QString::fromUtf8(recordOf(name, comment, project.checksum));
    QCOMPARE(ZipPackageHandle::setZipComment(project.path, record), fits);
    if (fits) {
        project.name = name;
        project.comment = comment;
        ++m_edits;
    } else {
        ++m_refusedEdits;
    }
    QVERIFY(ZipPackageHandle::checkPacketChecksum(project.path));
}

/// The list's complaints about the packages; it must show exactly these.
QString TstVerifiedSaves::misread() const
{
    ProjectList list;
    list.scanProjectFiles(m_projects, list.beginScan());
    QMap<QString, EngineerPacketInfo> listed;
    for (const EngineerPacketInfo &info : qAsConst(list.listProjects))
        listed.insert(info.strFilePath, info);
    QString all;
    if (list.listProjects.size() != m_saved.size())
        all += QStringLiteral("%1 are listed, %2 were saved\n")
                   .arg(QString::number(list.listProjects.size()), QString::number(m_saved.size()));
    for (const Saved &project : m_saved) {
        const EngineerPacketInfo info = listed.value(project.path);
        EngineerPacketInfo record;
        record.strFilePath = project.path;
        ZipPackageHandle::getZipFileEngineerInfo(record);
        if (info.strComment != project.comment || info.strChecksum != project.checksum ||
            record.strProjectName != project.name)
            all += replay(project.number) + ": listed otherwise than saved\n";
    }
    return all;
}

/// The entries that an apply could not extract completely.
QString TstVerifiedSaves::notExtracted() const
{
    QString all;
    for (const Saved &project : m_saved) {
        PackageReader package(project.path);
        const QString folder = m_site->extractPath();
        for (auto entry = project.contents.begin(); entry != project.contents.end(); ++entry) {
            const QString path = package.extractFile(entry.key(), folder + '/' + entry.key());
            if (path.isEmpty() || (!entry.key().endsWith('/') && QFileInfo(path).size() != entry->first))
                all += replay(project.number) + ": not extracted: " + entry.key() + '\n';
        }
        QDir(folder).removeRecursively();
    }
    return all;
}

void TstVerifiedSaves::saved_packages_stay_listed_and_readable_when_edited_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");
    const int begin = setting("VERIFY_SAVES_FIRST", 0);
    const int end = begin + setting("VERIFY_SAVES_COUNT", 300);
    for (int first = begin; first < end; first += batchSize) {
        const int count = qMin(batchSize, end - first);
        const QString row =
            QStringLiteral("trees %1 to %2").arg(QString::number(first), QString::number(first + count - 1));
        QTest::newRow(qPrintable(row)) << first << count;
    }
}

void TstVerifiedSaves::saved_packages_stay_listed_and_readable_when_edited()
{
    QFETCH(int, first);
    QFETCH(int, count);
    for (int number = first; number < first + count; ++number) {
        generateAndSave(number);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(replay(number)));
        Simulation::Journal::instance()->clear();
    }
    if (m_saved.isEmpty())
        return;
    const QString manifest = m_site->path() + "/manifest.json";
    QString complaints = misread() + notExtracted() + complaintsAboutAll(m_projects, m_saved, manifest);
    QVERIFY2(complaints.isEmpty(), qPrintable(complaints));

    for (Saved &project : m_saved) {
        Generator generator(~m_seed, quint32(project.number));
        const int enough = m_edits + edits;
        while (m_edits < enough) {
            edit(project, generator);
            if (QTest::currentTestFailed())
                QFAIL(qPrintable(replay(project.number) + ", edit " + QString::number(edits - (enough - m_edits))));
        }
    }
    complaints = misread() + complaintsAboutAll(m_projects, m_saved, manifest);
    QVERIFY2(complaints.isEmpty(), qPrintable(complaints));
}

void TstVerifiedSaves::cleanupTestCase()
{
    qDebug().noquote() << QStringLiteral("%1 trees with %2 entries, %3 of them near a multiple of 10 MiB; %4 saved, %5 "
                                         "refused (record too long); %6 edits, %7 refused (record too long)")
                              .arg(QString::number(m_trees), QString::number(m_entries),
                                   QString::number(m_nearMultiples), QString::number(m_trees - m_refused),
                                   QString::number(m_refused), QString::number(m_edits),
                                   QString::number(m_refusedEdits));
}

TEST_MAIN_GUI(TstVerifiedSaves)
#include "tst_verifiedsaves.moc"
