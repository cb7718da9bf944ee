// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerdocload.h"
#include "packagelayout.h"
#include "packagereader.h"
#include "packagetesting.h"
#include "zippackagehandle.h"

#include <data/pngmaker.h>
#include <support/customsite.h>
#include <support/packagebuilder.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <optional>
#include <sys/stat.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using Simulation::HardwareState;
using TestData::PngMaker;

namespace {

const QString onlineIp = QStringLiteral("10.0.0.1");
const QString offlineIp = QStringLiteral("10.0.0.2");
const QString sourceIp = QStringLiteral("10.0.0.9");

/// A tree with these files and folders (names ending in "/"); names in their on-disk encoding.
using Tree = QVector<QPair<QByteArray, QByteArray>>;

bool makeTree(const QString &dir, const Tree &tree)
{
    const QByteArray root = QFile::encodeName(dir) + '/';
    if (!QDir().mkpath(dir))
        return false;
    for (const auto &item : tree) {
        for (int end = item.first.indexOf('/'); end >= 0; end = item.first.indexOf('/', end + 1))
            mkdir((root + item.first.left(end)).constData(), 0777);
        if (item.first.endsWith('/'))
            continue;
        const int handle = open((root + item.first).constData(), O_CREAT | O_WRONLY | O_EXCL, 0666);
        QFile file;
        if (handle < 0 || !file.open(handle, QIODevice::WriteOnly, QFile::AutoCloseHandle) ||
            file.write(item.second) != item.second.size())
            return false;
    }
    return true;
}

/// The same tree in an archive not made by the product, with the folders that lead to its files.
PackageBuilder packageOf(const Tree &tree)
{
    PackageBuilder package;
    QSet<QByteArray> folders;
    for (const auto &item : tree) {
        for (int end = item.first.indexOf('/'); end >= 0; end = item.first.indexOf('/', end + 1)) {
            if (!folders.contains(item.first.left(end)))
                package.folder(item.first.left(end));
            folders.insert(item.first.left(end));
        }
        if (!item.first.endsWith('/'))
            package.file(item.first, item.second);
    }
    return package;
}

/// A device whose first background has that size.
HardwareState deviceWithBackground(const QSize &size)
{
    HardwareState state = plainDevice(sourceIp);
    QImage picture(size, QImage::Format_Mono);
    picture.fill(0);
    state.backgrounds.insert(1, {QStringLiteral("Opening"), picture});
    return state;
}

/// A description with that many parts.
QByteArray descriptionOfParts(int count)
{
    const QByteArray begun = descriptionOf(plainDevice(sourceIp)).trimmed();
    const QByteArray head = begun.left(begun.size() - 1) + ",\"more\":[";
    int parts = 0;
    bool isInString = false;
    for (const char c : head) {
        isInString = isInString != (c == '"');
        parts += !isInString && QByteArray(",:[{").contains(c) ? 1 : 0;
    }
    return head + '1' + QByteArray(",1").repeated(count - parts) + "]}";
}

} // namespace

Q_DECLARE_METATYPE(std::function<Tree()>)

/// Whatever is saved can be applied; what could not be applied is refused by the save.
class TstSavedAndApplied : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void what_a_limit_allows_is_saved_and_applied_data();
    void what_a_limit_allows_is_saved_and_applied();
    void random_trees_are_saved_and_extracted_alike();
    void presets_with_non_utf8_names_stay_distinct();

private:
    void removeTree() const;
    bool save(const Tree &tree);
    /// Applies the package; returns the result code of the check or the load that ended it.
    int apply(const QString &ip) const;
    bool isExtractedWhole() const;

    QScopedPointer<QTemporaryDir> m_temp;
    QString m_dir;
    QString m_package;
};

void TstSavedAndApplied::init()
{
    m_temp.reset(new QTemporaryDir);
    m_dir = m_temp->filePath("device");
    m_package = m_temp->filePath("show.corvelpro");
}

void TstSavedAndApplied::cleanup()
{
    removeTree();
}

/// Even if names are not UTF-8.
void TstSavedAndApplied::removeTree() const
{
    std::filesystem::remove_all(m_dir.toStdString());
}

bool TstSavedAndApplied::save(const Tree &tree)
{
    removeTree();
    QFile::remove(m_package);
    if (!makeTree(m_dir, tree))
        qFatal("The tree cannot be made");
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    return ZipPackageHandle::compressEngineerPacket(m_dir, info);
}

int TstSavedAndApplied::apply(const QString &ip) const
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(m_package);
    if (!job.checkPackageFile() || !job.checkDevice())
        return job.resultCode() == LoadSuccess ? -1 : job.resultCode();
    SignalRecorder<> finished(&job, &QThread::finished);
    job.start(QThread::InheritPriority);
    if (!QTest::qWaitFor([&finished] { return finished.count() == 1; }, 120000))
        qFatal("The job does not end");
    job.wait();
    return job.resultCode();
}

bool TstSavedAndApplied::isExtractedWhole() const
{
    QTemporaryDir out;
    PackageReader reader(m_package);
    const QStringList names = reader.entries();
    return names == reader.fileList() && std::all_of(names.begin(), names.end(), [&](const QString &name) {
               return !reader.extractFile(name, out.filePath(name)).isEmpty();
           });
}

void TstSavedAndApplied::what_a_limit_allows_is_saved_and_applied_data()
{
    QTest::addColumn<std::function<Tree()>>("tree");
    QTest::addColumn<bool>("isAllowed");
    using Make = std::function<Tree()>;
    const auto add = [](const QByteArray &name, bool isAllowed, const Make &make) {
        QTest::newRow(name.constData()) << make << isAllowed;
    };
    const auto device = [] { return descriptionOf(plainDevice(sourceIp)); };
    const auto description = [&](const QByteArray &name, bool isAllowed, const std::function<QByteArray()> &bytes) {
        add(name, isAllowed, [bytes] { return Tree{{"device.json", bytes()}}; });
    };
    constexpr int longest = 16 * 1024 * 1024;
    constexpr int most = 1024 * 1024;
    description("description of 16 MiB", true, [=] { return device().trimmed().leftJustified(longest); });
    description("description above 16 MiB", false, [=] { return device().trimmed().leftJustified(longest + 1); });
    description("description of a million parts", true, [] { return descriptionOfParts(most); });
    description("description above a million parts", false, [] { return descriptionOfParts(most + 1); });
    description("a million commas in a text", true, [=] {
        const QByteArray json = device().trimmed();
        return json.left(json.size() - 1) + ",\"more\":\"" + QByteArray(most + 1, ',') + "\"}";
    });
    add("a description that is not read above 16 MiB", true, [=] {
        return Tree{{"a.json", device()}, {"b.json", QByteArray(longest + 1, ' ')}};
    });

    const auto picture = [&](const QByteArray &name, bool isAllowed, const QByteArray &entry, const QSize &size,
                             const QByteArray &besides) {
        add(name, isAllowed, [=] {
            QByteArray png = PngMaker::blank(quint32(size.width()), quint32(size.height()), 1, PngMaker::Grey);
            png.insert(png.size() - PngMaker::end().size(), besides);
            return Tree{{"device.json", descriptionOf(deviceWithBackground(size))}, {entry, png}};
        });
    };
    // One bit per pixel in the file plus 32 as converted: 192 MiB.
    const QSize largest(8192, 5957);
    picture("picture of 192 MiB", true, "BKG/BKG_1.png", largest, QByteArray());
    picture("picture above 192 MiB", false, "BKG/BKG_1.png", largest + QSize(0, 1), QByteArray());
    picture("picture above 192 MiB that is not used", true, "other.png", largest + QSize(0, 1), QByteArray());
    picture("widest picture", true, "BKG/BKG_1.png", {1000000, 1}, QByteArray());
    picture("picture wider than the widest", false, "BKG/BKG_1.png", {1000001, 1}, QByteArray());
    picture("picture higher than the highest", false, "other.png", {1, 1000001}, QByteArray());
    const QByteArray packedText = PngMaker::chunk("zTXt", QByteArray("a\0\0", 3) + PngMaker::deflated("text"));
    picture("picture with four packed texts", true, "BKG/BKG_1.png", {8, 8}, packedText.repeated(4));
    picture("picture with five packed texts", false, "BKG/BKG_1.png", {8, 8}, packedText.repeated(5));
    picture("unused picture with five packed texts", false, "other.png", {8, 8}, packedText.repeated(5));

    const auto name = [&](const QByteArray &row, bool isAllowed, const QByteArray &entry) {
        add(row, isAllowed, [=] { return Tree{{"device.json", device()}, {entry, "content"}}; });
    };
    name("62 folders", true, QByteArray("d/").repeated(63) + "x");
    name("64 folders", false, QByteArray("d/").repeated(64) + "x");
    name("63 empty folders", true, QByteArray("d/").repeated(63));
    name("64 empty folders", false, QByteArray("d/").repeated(64));
    name("folder called like a picture", false, "BKG/x.PNG/y");
    name("folder called like a description", false, "x.json/");
    name("folder called like a preset", false, "x.rpst/y");
    name("file called like a folder", false, "bkg");
    name("file called like a folder further down", true, "sub/BKG");
    name("folder called like a folder", true, "bkg/x");
    name("drive letter", false, "C:x");
    name("drive letter further down", false, "sub/c:");
    name("colon behind two letters", true, "ab:c");
    name("colon behind a digit", true, "1:2");
    name("climb by a backslash", false, "..\\x");
    name("backslash in front", false, "sub/x\\..\\y");
    name("absolute by a backslash", false, "\\x");
    name("backslash inside", true, "a\\b");
    name("climb with a blank", false, ".. /x");
    name("percent signs", true, "%FF");
}

void TstSavedAndApplied::what_a_limit_allows_is_saved_and_applied()
{
    QFETCH(std::function<Tree()>, tree);
    QFETCH(bool, isAllowed);
    CustomSite site({{plainDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    const Tree made = tree();
    QCOMPARE(save(made), isAllowed);
    if (!isAllowed)
        QVERIFY(packageOf(made).record("show", QString()).write(m_package));
    const int online = apply(onlineIp);
    const int offline = apply(offlineIp);
    QCOMPARE(isAllowed, online == LoadSuccess && offline == LoadSuccess);
    if (isAllowed)
        QVERIFY(isExtractedWhole());
}

void TstSavedAndApplied::random_trees_are_saved_and_extracted_alike()
{
    const QVector<QByteArray> parts{
        "a",   "b.txt", "BKG",  "bkg",  "LOGO", "Preset", "x.png",        "y.JSON",        "z.RPst", "C:",
        "c:x", "1:",    "..x",  ".. ",  " ..",  "...",    "a\\b",         "..\\x",         "\\x",    "a\\..",
        " ",   "%FF",   "\xFF", "\xFE", "%",    "a\\C:x", "\xEF\xBF\xBD", "\xEF\xBB\xBFx", "x",      "\xE5\x9B\xBE",
        "\xC3"};
    QRandomGenerator random(11);
    int saved = 0;
    constexpr int rounds = 300;
    for (int round = 0; round < rounds; ++round) {
        Tree tree;
        QSet<QByteArray> taken;
        bool isListedRight = true;
        for (int count = random.bounded(1, 6); count > 0; --count) {
            QByteArray path;
            const int depth = random.bounded(30) == 0 ? random.bounded(60, 68) : random.bounded(1, 4);
            for (int level = 1; level < depth; ++level)
                path += (depth > 4 ? QByteArray("d") : parts.at(random.bounded(parts.size()))) + '/';
            path += random.bounded(8) == 0 ? QByteArray() : parts.at(random.bounded(parts.size()));
            bool isFree = !path.isEmpty();
            for (const QByteArray &other : qAsConst(taken)) {
                isFree = isFree && other != path && !other.startsWith(path + '/') && !path.startsWith(other + '/') &&
                         other != path + '/' && path != other + '/';
            }
            if (!isFree)
                continue;
            taken.insert(path);
            tree.append({path, QByteArray::number(count)});
            // Only these names tell the files on the disk apart.
            for (const QByteArray &part : path.split('/'))
                isListedRight = isListedRight && QFile::encodeName(QFile::decodeName(part)) == part;
        }
        if (tree.isEmpty())
            continue;
        const bool isSaved = save(tree);
        if (isSaved) {
            ++saved;
            QTemporaryDir out;
            PackageReader reader(m_package);
            QVERIFY(isExtractedWhole());
            for (const auto &item : qAsConst(tree))
                QVERIFY(item.first.endsWith('/') || reader.read(QString::fromUtf8(item.first), 100) == item.second);
        } else {
            QVERIFY(packageOf(tree).write(m_package));
            QVERIFY(!isListedRight || !isExtractedWhole());
        }
    }
    QVERIFY2(saved > rounds / 10 && saved < rounds * 9 / 10, qPrintable(QString::number(saved)));
}

void TstSavedAndApplied::presets_with_non_utf8_names_stay_distinct()
{
    // The others are listed under the last one's name.
    const Tree tree{{"Preset/\xFF.RPst", "1"}, {"Preset/\xFE.RPst", "2"}, {"Preset/\xEF\xBF\xBD.RPst", "3"}};
    QVERIFY(!save(tree));
    QVERIFY(!save({tree.at(0)}));
    QVERIFY(save({tree.at(2)}));
    // The conversion drops a byte order mark.
    QVERIFY(!save({{"x", "1"}, {"\xEF\xBB\xBFx", "2"}}));
    QVERIFY(!save({{"\xEF\xBB\xBFx", "2"}}));

    // An archive distinguishes them.
    CustomSite site({{plainDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    QVERIFY(packageOf(Tree{{"device.json", descriptionOf(plainDevice(sourceIp))}} + tree)
                .record("show", QString())
                .write(m_package));
    QCOMPARE(apply(offlineIp), int(LoadSuccess));
    const QString presets = site.devicePath(offlineIp) + "/Preset/";
    QCOMPARE(readFile(presets + "%FF.RPst"), QByteArray("1"));
    QCOMPARE(readFile(presets + "%FE.RPst"), QByteArray("2"));
    QCOMPARE(readFile(presets + "\uFFFD.RPst"), QByteArray("3"));
}

TEST_MAIN(TstSavedAndApplied)
#include "tst_savedandapplied.moc"
