// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "entrysource.h"

#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "packagewriter.h"
#include "plainfile.h"
#include "reason.h"
#include "streamcopy.h"
#include "zippackagehandle.h"

#include <QFile>
#include <QFileInfo>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

class PackageSource : public EntrySource
{
public:
    explicit PackageSource(const QString &path)
        : m_reader(path)
    {}

    bool list(QString *reason)
    {
        if (!m_reader.isListable(reason))
            return false;
        for (const QString &name : m_reader.entries())
            add(name);
        sort();
        return true;
    }

    qint64 size(const QString &file) const override { return m_reader.entrySize(nameThere(file)); }

    bool read(const QString &file, QIODevice &destination, QString *reason) override
    {
        return m_reader.read(nameThere(file), destination, size(file), reason);
    }

    std::optional<PackedFile> packed(const QString &file) override
    {
        const std::optional<PackageReader::PackedContent> content = m_reader.packedContent(nameThere(file));
        const bool isPlain =
            content && (content->nMethod == EntryHeader::stored || content->nMethod == EntryHeader::deflated);
        if (!isPlain || content->nSize > PackageLimits::maxEntrySize ||
            content->nPackedSize > PackageLimits::maxArchiveSize)
            return std::nullopt;
        PackedFile packed{m_reader.file().handle(), content->nOffset, {}};
        packed.header.method = content->nMethod;
        packed.header.crc = content->nCrc;
        packed.header.packedSize = quint32(content->nPackedSize);
        packed.header.size = quint32(content->nSize);
        return packed;
    }

    std::optional<Record> record() const override
    {
        EngineerPacketInfo info;
        if (!ZipPackageHandle::parseEngineerInfo(info, m_reader.archiveComment()))
            return std::nullopt;
        return Record{info.strProjectName, info.strComment};
    }

private:
    PackageReader m_reader;
};

class DirectorySource : public EntrySource
{
public:
    explicit DirectorySource(const QString &path)
        : m_path(path)
    {}

    bool list(QString *reason)
    {
        PackageWriter writer(m_path, QString());
        if (!writer.scan(reason))
            return false;
        for (const PackageWriter::Entry &entry : writer.entries()) {
            add(entry.strName);
            m_entries.insert(entry.strName, entry);
        }
        sort();
        return true;
    }

    qint64 size(const QString &file) const override { return m_entries.value(file).nSize; }

    bool read(const QString &file, QIODevice &destination, QString *reason) override
    {
        QFile source(m_entries.value(file).strSourcePath);
        qint64 copied = 0;
        QString cause;
        const bool isRead = openPlainFile(source, true, &cause) &&
                            copyStream(source, destination, size(file), &copied, nullptr, &cause) &&
                            (copied == size(file) || failBecause(&cause, QStringLiteral("it became shorter")));
        return isRead || failBecause(reason, QStringLiteral("cannot read %1: %2").arg(file, cause));
    }

    std::optional<PackedFile> packed(const QString &) override { return std::nullopt; }

    std::optional<Record> record() const override { return std::nullopt; }

private:
    const QString m_path;
    QHash<QString, PackageWriter::Entry> m_entries;
};

template<typename Source>
std::unique_ptr<EntrySource> listed(const QString &path, QString *reason)
{
    auto source = std::make_unique<Source>(path);
    if (!source->list(reason))
        return nullptr;
    return source;
}

} // namespace

std::unique_ptr<EntrySource> EntrySource::open(const QString &path, QString *reason)
{
    return QFileInfo(path).isDir() ? listed<DirectorySource>(path, reason) : listed<PackageSource>(path, reason);
}

EntrySource::~EntrySource() = default;

void EntrySource::add(const QString &entryName)
{
    const QString name = PackageLayout::plainName(entryName);
    // The directory itself, which both sides have.
    if (name == QLatin1String("./"))
        return;
    // An unsafe name cannot be read. It may have thousands of levels, which would need a gigabyte here.
    const bool isSafe = PackageLayout::isSafeName(name);
    for (int end = name.indexOf(QLatin1Char('/')); isSafe && end >= 0; end = name.indexOf(QLatin1Char('/'), end + 1))
        m_folders.insert(name.left(end + 1));
    if (PackageLayout::isFolder(name) || m_namesThere.contains(name))
        return;
    m_namesThere.insert(name, entryName);
    m_files.append(name);
}

} // namespace Corvelpro
