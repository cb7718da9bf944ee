// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagelayout.h"
#include "packagereader.h"
#include "zippackagehandle.h"

#include <data/hostilepackages.h>
#include <support/leaksoflibrary.h>
#include <support/testmain.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>

using namespace ProjectFileCfg::Internal;

namespace {

/// The rows of the page's table with this header; marks of code are left out.
QVector<QStringList> tableOf(const QString &header)
{
    QFile page(QStringLiteral(PACKAGE_FORMAT_PAGE));
    if (!page.open(QIODevice::ReadOnly))
        return {};
    const QStringList lines = QString::fromUtf8(page.readAll()).split('\n');
    QVector<QStringList> rows;
    for (int line = lines.indexOf(header) + 2; line > 1 && lines.value(line).startsWith('|'); ++line) {
        QStringList cells = lines.at(line).split('|').mid(1);
        cells.removeLast();
        for (QString &cell : cells)
            cell = cell.remove('`').trimmed();
        rows.append(cells);
    }
    return rows;
}

QVector<QStringList> vectors()
{
    return tableOf(QStringLiteral("| vector | archive | comment | package | checksum | name | comment read |"));
}

/// The bytes that a recipe of the page makes.
QByteArray made(const QString &recipe)
{
    static const QVector<QStringList> pieces = tableOf(QStringLiteral("| piece | recipe |"));
    static const QRegularExpression part(QStringLiteral("(?:(\\d+)x)?(?:'([^']*)'|(\\S+))"));
    QByteArray bytes;
    for (auto match = part.globalMatch(recipe); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        const QString word = found.captured(3);
        QByteArray piece = word.isEmpty() ? found.captured(2).toUtf8() : QByteArray::fromHex(word.toLatin1());
        for (const QStringList &named : pieces) {
            if (named.first() == word)
                piece = made(named.at(1));
        }
        bytes += found.captured(1).isEmpty() ? piece : piece.repeated(found.captured(1).toInt());
    }
    return bytes;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size();
}

} // namespace

/// docs/package-format.md is what the product does: its tables, and a reader that knows nothing else.
class TstPackageFormat : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void vectors_are_what_the_page_says_data();
    void vectors_are_what_the_page_says();
    void names_are_what_the_page_says_data();
    void names_are_what_the_page_says();
    void reader_agrees_on_the_vectors();
    void reader_agrees_on_odd_packages();
    void reader_agrees_on_saved_packages();
    void reader_agrees_with_what_the_tool_says();

private:
    QJsonArray readerSays(const QStringList &paths);
    void compareWithReader(const QStringList &paths);
    QStringList writeOddPackages();
    QString save(const QString &name);

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstPackageFormat::init()
{
    m_dir.reset(new QTemporaryDir);
}

void TstPackageFormat::vectors_are_what_the_page_says_data()
{
    QTest::addColumn<QStringList>("cells");
    QVERIFY(!vectors().isEmpty());
    for (const QStringList &cells : vectors())
        QTest::newRow(qPrintable(cells.first())) << cells;
}

void TstPackageFormat::vectors_are_what_the_page_says()
{
    QFETCH(QStringList, cells);
    QCOMPARE(cells.size(), 7);
    const QString path = m_dir->filePath("vector.corvelpro");
    QVERIFY(writeFile(path, made(cells.at(1)) + made(cells.at(2))));

    const QString none = QStringLiteral("-");
    QCOMPARE(ZipPackageHandle::isValidEngineerPacket(path), cells.at(3) == "yes");
    QCOMPARE(ZipPackageHandle::calcPacketChecksum(path), cells.at(4) == none ? QString() : cells.at(4));
    EngineerPacketInfo info;
    QCOMPARE(ZipPackageHandle::parseEngineerInfo(info, ZipPackageHandle::getZipComment(path)), cells.at(5) != none);
    if (cells.at(5) != none) {
        QCOMPARE(info.strProjectName, cells.at(5));
        QCOMPARE(info.strComment, cells.at(6));
    }
}

void TstPackageFormat::names_are_what_the_page_says_data()
{
    QTest::addColumn<QStringList>("cells");
    const auto names = tableOf(QStringLiteral("| names, as in the archive | as listed | written |"));
    QVERIFY(!names.isEmpty());
    for (const QStringList &cells : names)
        QTest::newRow(qPrintable(cells.first())) << cells;
}

void TstPackageFormat::names_are_what_the_page_says()
{
    QFETCH(QStringList, cells);
    QCOMPARE(cells.size(), 3);
    QByteArrayList names;
    for (const QString &recipe : cells.first().split(QStringLiteral(", ")))
        names.append(made(recipe));
    const QStringList listed = PackageLayout::namesOf(names);
    if (cells.at(1) == "the same")
        QCOMPARE(listed, QStringList(QString::fromUtf8(names.first())));
    else
        QCOMPARE(listed, cells.at(1).split(QStringLiteral(", ")));
    for (const QString &name : listed)
        QCOMPARE(PackageLayout::isSafeName(name) && !PackageLayout::blocksLaterPackages(name), cells.at(2) == "yes");
}

QJsonArray TstPackageFormat::readerSays(const QStringList &paths)
{
    QProcess reader;
    reader.start(QStringLiteral("python3"), QStringList{"-B", QStringLiteral(READER), "info"} + paths);
    reader.waitForFinished(-1);
    const QByteArray messages = reader.readAllStandardError();
    if (!messages.isEmpty())
        qWarning() << messages;
    return QJsonDocument::fromJson(reader.readAllStandardOutput()).object()["files"].toArray();
}

void TstPackageFormat::compareWithReader(const QStringList &paths)
{
    const QJsonArray files = readerSays(paths);
    QCOMPARE(files.size(), paths.size());
    int valid = 0;
    for (int index = 0; index < paths.size(); ++index) {
        const QByteArray path = paths.at(index).toUtf8();
        const QJsonObject found = files.at(index).toObject();
        EngineerPacketInfo info;
        info.strFilePath = paths.at(index);
        const bool isPackage = [&info] {
            // One of the records has a member twice.
            const TestSupport::LeaksOfLibrary leaks(true);
            return ZipPackageHandle::getZipFileEngineerInfo(info);
        }();
        QVERIFY2((found["verdict"] == "valid") == isPackage, path + ": " + found["reason"].toString().toUtf8());
        if (isPackage) {
            const QJsonObject record{
                {"Checksum", info.strChecksum}, {"comment", info.strComment}, {"projectName", info.strProjectName}};
            QVERIFY2(found["record"] == record, path);
            ++valid;
        }
        // The page says nothing on the entries of what is no archive.
        if (!isPackage && !found.contains("entries"))
            continue;
        const PackageReader package(paths.at(index));
        QStringList names;
        QSet<QString> known;
        for (const QJsonValue &entry : found["entries"].toArray()) {
            names.append(entry["name"].toString());
            // Of several entries of one name, the product has only the first one's size.
            if (!known.contains(names.last()))
                QVERIFY2(qint64(entry["size"].toDouble()) == package.entrySize(names.last()), path);
            known.insert(names.last());
        }
        QVERIFY2(names == package.fileList(), path);
    }
    QVERIFY(valid > 0);
}

void TstPackageFormat::reader_agrees_on_the_vectors()
{
    QStringList paths;
    for (const QStringList &cells : vectors()) {
        paths.append(m_dir->filePath(QStringLiteral("%1.corvelpro").arg(paths.size())));
        QVERIFY(writeFile(paths.last(), made(cells.at(1)) + made(cells.at(2))));
    }
    compareWithReader(paths);
}

QStringList TstPackageFormat::writeOddPackages()
{
    QStringList paths;
    for (const TestData::HostilePackage &package : TestData::hostilePackages()) {
        paths.append(m_dir->filePath(package.name + ".corvelpro"));
        if (!writeFile(paths.last(), package.bytes()))
            return {};
    }
    return paths;
}

void TstPackageFormat::reader_agrees_on_odd_packages()
{
    const QStringList paths = writeOddPackages();
    QVERIFY(!paths.isEmpty());
    compareWithReader(paths);
}

/// Packs the folder of this name; empty on failure.
QString TstPackageFormat::save(const QString &name)
{
    EngineerPacketInfo info;
    info.strFilePath = m_dir->filePath(name + ".corvelpro");
    info.strProjectName = name;
    info.strComment = QString::fromUtf8("第一行\nsecond \"line\"");
    return ZipPackageHandle::compressEngineerPacket(m_dir->filePath(name), info) ? info.strFilePath : QString();
}

void TstPackageFormat::reader_agrees_on_saved_packages()
{
    const auto content = [this](const QString &name, const QByteArray &bytes) {
        QVERIFY2(writeFile(m_dir->filePath(name), bytes), qPrintable(name));
    };
    QStringList paths;
    content("plain/192.168.0.10.json", "{}");
    content("plain/BKG/BKG_0.png", "no picture");
    QVERIFY(QDir(m_dir->path()).mkpath("plain/Preset/empty"));
    paths.append(save("plain"));

    content(QString::fromUtf8("names/演出/描述.json"), "{}");
    content("names/.hidden", QByteArray(100000, '\0'));
    paths.append(save("names"));

    // The end record around the boundary of a chunk, with and without padding.
    const int chunk = 10 * 1024 * 1024;
    content("boundary/a.png", QByteArray(chunk, 'x'));
    const QString probe = save("boundary");
    const int overhead = int(QFileInfo(probe).size()) - ZipPackageHandle::getZipComment(probe).toUtf8().size() - chunk;
    for (const int beyond : {-1, 0, 1, 20, 21, 22}) {
        const QString name = QStringLiteral("boundary %1").arg(beyond);
        content(name + "/a.png", QByteArray(chunk - overhead + beyond, 'x'));
        paths.append(save(name));
    }

    content("edited/a.json", "{}");
    EngineerPacketInfo edited;
    edited.strFilePath = save("edited");
    edited.strComment = QString(5000, QChar(0x6F14));
    QVERIFY(ZipPackageHandle::setEngineerInfo(edited));
    paths.append(edited.strFilePath);

    QVERIFY(!paths.contains(QString()));
    compareWithReader(paths);
}

void TstPackageFormat::reader_agrees_with_what_the_tool_says()
{
    // A process for each: the large ones, which are large in their contents only, would take a minute.
    QStringList paths;
    for (const QString &path : writeOddPackages()) {
        if (QFileInfo(path).size() < 1024 * 1024)
            paths.append(path);
    }
    const QJsonArray files = readerSays(paths);
    QCOMPARE(files.size(), paths.size());
    int compared = 0;
    for (int index = 0; index < paths.size(); ++index) {
        const QByteArray path = paths.at(index).toUtf8();
        const QJsonObject found = files.at(index).toObject();
        QProcess tool;
        tool.start(QStringLiteral(CORVELPRO_PROGRAM), {"info", "--json", paths.at(index)});
        QVERIFY2(tool.waitForFinished(TestSupport::patience) && tool.exitStatus() == QProcess::NormalExit, path);
        const QJsonObject said = QJsonDocument::fromJson(tool.readAllStandardOutput()).object();
        QVERIFY2(said["listed"].toBool() == (found["verdict"] == "valid"), path);
        if (!said["listed"].toBool())
            continue;
        const QJsonObject record{
            {"Checksum", said["checksum"]}, {"comment", said["comment"]}, {"projectName", said["name"]}};
        QVERIFY2(found["record"] == record, path);
        QCOMPARE(said["entries"].toInt(), found["entries"].toArray().size());

        // The tool sorts the entries by their use, and leaves out folders.
        QStringList saidNames;
        for (const char *use : {"pictures", "presets", "leftOver"}) {
            for (const QJsonValue &entry : said[QLatin1String(use)].toArray())
                saidNames.append(entry["entry"].toString());
        }
        const QString description = said["description"]["entry"].toString();
        if (!description.isEmpty())
            saidNames.append(description);
        QStringList foundNames;
        for (const QJsonValue &entry : found["entries"].toArray())
            foundNames.append(entry["name"].toString());
        for (QStringList *names : {&saidNames, &foundNames}) {
            names->erase(
                std::remove_if(names->begin(), names->end(), [](const QString &name) { return name.endsWith('/'); }),
                names->end());
            names->sort();
        }
        QVERIFY2(saidNames == foundNames, path);
        ++compared;
    }
    QVERIFY(compared > 200);
}

TEST_MAIN_CORE(TstPackageFormat)
#include "tst_packageformat.moc"
