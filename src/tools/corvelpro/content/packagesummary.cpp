// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagesummary.h"

#include "entrykind.h"
#include "writeonlydevice.h"

#include "contentscan.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "parseddescription.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

/// Takes the first bytes of an entry, enough for a picture's header, and refuses the rest, which ends the reading.
class HeadDevice : public WriteOnlyDevice
{
public:
    const QByteArray &head() const { return m_head; }

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        constexpr int enough = 64;
        const qint64 taken = std::min<qint64>(size, enough - m_head.size());
        m_head.append(data, int(taken));
        return taken;
    }

private:
    QByteArray m_head;
};

QSize pictureSize(PackageReader &package, const QString &entry)
{
    HeadDevice device;
    package.read(entry, device, PackageReader::maxSizeOf(entry));
    PictureScan scan;
    scan.feed(device.head().constData(), device.head().size());
    return scan.size();
}

} // namespace

bool PackageSummary::read(const QString &path, QString *reason)
{
    PackageReader package(path);
    if (!package.isOpen(reason))
        return false;
    m_record.strFilePath = path;
    ZipPackageHandle::getZipFileEngineerInfo(package, m_record, &m_problem);
    const QStringList all = package.fileList();
    const QStringList counting = package.entries();
    m_entries = all.size();
    m_description = findDescription(counting);
    readDescription(package);
    for (const QString &entry : counting)
        readEntry(package, entry);
    // What remains are names that an earlier entry has, or whose path it has.
    QSet<QString> used;
    for (const QString &entry : all) {
        const QString path = PackageLayout::plainName(entry);
        if (used.contains(path))
            m_leftOver.append(
                {entry, package.entrySize(entry), QStringLiteral("an earlier entry has its path, and counts")});
        used.insert(path);
    }
    return true;
}

void PackageSummary::readDescription(PackageReader &package)
{
    if (m_description.isEmpty()) {
        m_descriptionProblem = QStringLiteral("there is none");
        return;
    }
    QByteArray json = package.read(m_description, PackageLimits::maxParsedDescriptionSize, &m_descriptionProblem);
    QBuffer buffer(&json);
    buffer.open(QIODevice::ReadOnly);
    QJsonParseError error{};
    const QJsonDocument document = parseDescription(buffer, error);
    if (m_descriptionProblem.isEmpty() && !document.isObject())
        m_descriptionProblem = error.error == QJsonParseError::NoError
                                   ? QStringLiteral("it is too large, or no JSON object")
                                   : QStringLiteral("it is not JSON: %1").arg(error.errorString());
    // Removed, not collected: QJsonObject::insert() rounds integers above 2^53.
    m_members = document.object();
    for (const QString &name : m_members.keys()) {
        const QJsonValue value = m_members.value(name);
        if (value.isArray() || value.isObject())
            m_members.remove(name);
    }
}

void PackageSummary::readEntry(PackageReader &package, const QString &entry)
{
    const qint64 bytes = package.entrySize(entry);
    m_contentSize += bytes;
    const EntryKind kind = kindOf(entry);
    if (kind == EntryKind::GalleryPicture)
        m_pictures.append({entry, bytes, pictureSize(package, entry)});
    else if (kind == EntryKind::Preset)
        m_presets.append({entry, bytes});
    else if (kind == EntryKind::Description && entry != m_description)
        m_leftOver.append({entry, bytes, QStringLiteral("a load reads the first description only")});
    else if (kind == EntryKind::Other)
        m_leftOver.append({entry, bytes, QStringLiteral("no load to an online device uses it")});
}

} // namespace Corvelpro
