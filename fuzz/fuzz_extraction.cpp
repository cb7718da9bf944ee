// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Extracts every entry of an archive into a folder; nothing may be written outside it.
//
// The first byte selects the kind of input: 0 for the archive itself, anything else for the names of its entries, one a
// line, in an otherwise valid archive. A name that ends in "@" is a link.
#include "fuzzing.h"
#include "fuzzpackages.h"

#include <packagereader.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

using namespace ProjectFileCfg::Internal;

namespace {

/// A folder in tmpfs: "out" is the destination; the rest must not change.
class Ground
{
public:
    Ground()
    {
        QByteArray pattern("/dev/shm/projectfilecfg-fuzz-XXXXXX");
        FUZZ_VERIFY(mkdtemp(pattern.data()));
        m_root = QString::fromLatin1(pattern);
        FUZZ_VERIFY(QDir().mkpath(m_root + QStringLiteral("/a/victim")) &&
                    QDir().mkpath(m_root + QStringLiteral("/a/current")));
        QFile file(m_root + QStringLiteral("/a/victim/file"));
        FUZZ_VERIFY(file.open(QIODevice::WriteOnly) && file.write("untouched") == 9 && file.flush());
        // Where a relative name taken literally would end.
        FUZZ_VERIFY(QDir::setCurrent(m_root + QStringLiteral("/a/current")));
        clear();
        m_before = outside();
    }
    ~Ground() { QDir(m_root).removeRecursively(); }
    Q_DISABLE_COPY(Ground)

    QString out() const { return m_root + QStringLiteral("/a/out"); }

    void clear() const
    {
        FUZZ_VERIFY(QDir(out()).removeRecursively() && QDir().mkpath(out()));
        FUZZ_VERIFY(QFile::link(m_root + QStringLiteral("/a/victim"), out() + QStringLiteral("/linked")));
        FUZZ_VERIFY(QFile::link(m_root + QStringLiteral("/a/victim/file"), out() + QStringLiteral("/linked.png")));
    }

    bool isUntouched() const { return outside() == m_before; }

private:
    QStringList outside() const
    {
        QStringList found;
        const auto list = [&found](const QString &folder) {
            const QFileInfoList infos =
                QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
            for (const QFileInfo &info : infos)
                found.append(info.filePath() + QLatin1Char(' ') + QString::number(info.isFile() ? info.size() : 0));
        };
        for (const char *folder : {"", "/a", "/a/victim", "/a/current"})
            list(m_root + QLatin1String(folder));
        return found;
    }

    QString m_root;
    QStringList m_before;
};

} // namespace

int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::beQuiet();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Fuzzing::MemoryFile file;
    static const Ground ground;
    if (size == 0)
        return 0;
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data + 1), int(size - 1));
    const QByteArray archive = data[0] == 0 ? input : Fuzzing::archiveOfNames(input);
    file.setContent(archive.constData(), std::size_t(archive.size()));

    PackageReader package(file.path());
    for (const QString &path : package.extractJsonFiles(ground.out()))
        FUZZ_VERIFY(path.isEmpty() || QFileInfo(path).isFile());
    for (const QString &name : package.fileList()) {
        const QString path = package.extractFile(name, ground.out() + QLatin1Char('/') + name);
        FUZZ_VERIFY(path.isEmpty() || QFileInfo::exists(path));
    }
    FUZZ_VERIFY(ground.isUntouched());
    QDirIterator written(ground.out(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (written.hasNext()) {
        const QString path = written.next();
        FUZZ_VERIFY(!written.fileInfo().isSymLink() || written.fileName().startsWith(QStringLiteral("linked")));
        FUZZ_VERIFY(!path.endsWith(QStringLiteral(".part")) ||
                    package.fileList().filter(QStringLiteral(".part")).size() > 0);
    }
    ground.clear();
    return 0;
}
