// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "verification.h"

#include "contentcheck.h"
#include "entrycontent.h"
#include "headercheck.h"
#include "namecheck.h"
#include "writeonlydevice.h"

#include "dropbehind.h"
#include "reason.h"
#include "zippackagehandle.h"

#include <QFile>

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using Entry = ArchiveDirectory::Entry;

namespace {

/// Passes what is written to it on to a sink.
class SinkDevice : public WriteOnlyDevice
{
public:
    explicit SinkDevice(const ContentSink &sink)
        : m_sink(sink)
    {}

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        m_sink(data, size);
        return size;
    }

private:
    const ContentSink &m_sink;
};

} // namespace

Verification::Verification(const QString &path)
    : m_path(path)
{}

bool Verification::run(const std::function<void(qint64 bytes)> &passed, QString *reason)
{
    PackageReader package(m_path);
    QFile &file = package.file();
    if (!file.isOpen())
        return package.isOpen(reason);
    m_size = file.size();
    const ArchiveDirectory directory(file, m_findings);
    m_entries = directory.entries().size();
    checkRecord(package, directory);
    checkNames(directory, m_findings);
    checkContents(package, directory, passed);
    return file.error() == QFileDevice::NoError ||
           failBecause(reason, QStringLiteral("cannot read %1: %2").arg(m_path, file.errorString()));
}

void Verification::checkRecord(const PackageReader &package, const ArchiveDirectory &directory)
{
    QString reason;
    EngineerPacketInfo info;
    if (!ZipPackageHandle::getZipFileEngineerInfo(package, info, &reason)) {
        m_findings.add({}, directory.commentOffset(), reason);
        return;
    }
    const QJsonObject record = QJsonDocument::fromJson(package.archiveComment().toUtf8()).object();
    for (const QString &key : {QStringLiteral("Checksum"), QStringLiteral("comment"), QStringLiteral("projectName")}) {
        if (!record.value(key).isString())
            m_findings.add({}, directory.commentOffset(), QStringLiteral("its record has no text \"%1\"").arg(key));
    }
}

/// The zip library's view must be the one that everything else here is about.
bool Verification::isListable(const PackageReader &package, const ArchiveDirectory &directory)
{
    const QStringList names = package.fileList();
    const auto &entries = directory.entries();
    const bool isSame = std::equal(names.begin(), names.end(), entries.begin(), entries.end(),
                                   [](const QString &name, const Entry &entry) { return name == entry.name; });
    if (isSame && directory.isComplete())
        return true;
    if (directory.isComplete())
        m_findings.add({}, directory.start(),
                       names.isEmpty() ? QStringLiteral("its directory cannot be true: no load accepts it")
                                       : QStringLiteral("a load finds other entries in it"));
    m_findings.addUnknown({}, QStringLiteral("the contents, since the directory is damaged"));
    return false;
}

void Verification::checkContents(PackageReader &package, const ArchiveDirectory &directory,
                                 const std::function<void(qint64 bytes)> &passed)
{
    if (!isListable(package, directory))
        return;
    QFile &file = package.file();
    DropBehind dropBehind(file.handle());
    const auto pass = [&](qint64 bytes) {
        dropBehind.advance(file.pos());
        passed(bytes);
    };
    HeaderCheck headers(file, directory, m_findings);
    ContentCheck contents(directory, m_findings);
    QSet<QString> names;
    for (const Entry &entry : directory.entries()) {
        const qint64 offset = headers.contentOffset(entry);
        const bool isPlain = entry.header.method == EntryHeader::stored || entry.header.method == EntryHeader::deflated;
        const bool isFirst = !names.contains(entry.name);
        names.insert(entry.name);
        if (offset < 0 || (entry.header.flags & EntryHeader::encrypted) != 0 || (!isPlain && !isFirst)) {
            m_findings.addUnknown(entry.name, QStringLiteral("its content, which cannot be read"));
            continue;
        }
        contents.check(entry, [&](const ContentSink &sink, QString *reason) {
            if (isPlain)
                return (file.seek(offset) || failBecause(reason, file.errorString())) &&
                       readContent(file, entry.header, sink, pass, reason);
            SinkDevice device(sink);
            return package.read(entry.name, device, PackageReader::maxSizeOf(entry.name), reason);
        });
    }
    headers.checkExtents();
    contents.finish();
    m_pictures = contents.pictures();
}

} // namespace Corvelpro
