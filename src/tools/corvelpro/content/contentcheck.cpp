// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "contentcheck.h"

#include "entrykind.h"
#include "findings.h"

#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "parseddescription.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QtEndian>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using namespace ProjectFileCfg::Internal::PackageLayout;
using Entry = ArchiveDirectory::Entry;

namespace {

void ignore(const char *, qint64) {}

/// A sink into `device`; `*isWritten` becomes false if a write fails.
ContentSink into(QIODevice &device, bool *isWritten)
{
    return [&device, isWritten](const char *data, qint64 size) {
        *isWritten = *isWritten && device.write(data, size) == size;
    };
}

} // namespace

ContentCheck::ContentCheck(const ArchiveDirectory &directory, Findings &findings)
    : m_findings(findings)
    , m_pictures(findings)
{
    const auto &entries = directory.entries();
    const auto description =
        std::find_if(entries.begin(), entries.end(), [](const Entry &entry) { return isDescription(entry.name); });
    if (description != entries.end())
        m_description = &*description;
    else
        m_findings.add({}, directory.start(), QStringLiteral("there is no device description"));
}

void ContentCheck::check(const Entry &entry, const Read &read)
{
    if (entry.header.size > PackageReader::maxSizeOf(entry.name))
        m_findings.add(entry.name, entry.offset,
                       QStringLiteral("it has %1 bytes, and a load takes %2")
                           .arg(entry.header.size)
                           .arg(PackageReader::maxSizeOf(entry.name)));
    if (&entry == m_description)
        checkDescription(entry, read);
    else if (isPicture(entry.name))
        checkPicture(entry, read);
    else if (kindOf(entry.name) == EntryKind::Preset)
        checkPreset(entry, read);
    else
        isRead(entry, read, ignore);
}

bool ContentCheck::isRead(const Entry &entry, const Read &read, const ContentSink &sink)
{
    QString reason;
    if (read(sink, &reason))
        return true;
    m_findings.add(entry.name, entry.localOffset, reason);
    return false;
}

void ContentCheck::checkDescription(const Entry &entry, const Read &read)
{
    QBuffer content;
    content.open(QIODevice::ReadWrite);
    bool isWritten = true;
    const bool isTooLarge = entry.header.size > PackageLimits::maxParsedDescriptionSize;
    if (!isRead(entry, read, isTooLarge ? ignore : into(content, &isWritten)))
        return;
    QJsonParseError error{};
    content.seek(0);
    const QJsonDocument document = isTooLarge ? QJsonDocument() : parseDescription(content, error);
    if (document.isObject() && !document.isEmpty())
        return;
    const bool isSyntax = error.error != QJsonParseError::NoError;
    m_findings.add(entry.name, entry.localOffset,
                   isSyntax ? QStringLiteral("the description is not JSON: %1").arg(error.errorString())
                            : QStringLiteral("the description is empty, too large, or no JSON object"));
}

void ContentCheck::checkPicture(const Entry &entry, const Read &read)
{
    const std::shared_ptr<QIODevice> place = m_pictures.placeFor(entry);
    bool isWritten = true;
    if (!isRead(entry, read, place ? into(*place, &isWritten) : ContentSink(ignore)) || !place)
        return;
    if (isWritten)
        m_pictures.begin(entry, place);
    else
        m_findings.addUnknown(entry.name,
                              QStringLiteral("whether it can be decoded: there is no room for a copy of it"));
}

void ContentCheck::checkPreset(const Entry &entry, const Read &read)
{
    constexpr int lengthSize = 4;
    constexpr quint32 none = 0xFFFFFFFF;
    QByteArray length;
    const auto takeLength = [&length](const char *data, qint64 size) {
        length.append(data, int(std::min<qint64>(size, lengthSize - length.size())));
    };
    if (!isRead(entry, read, takeLength))
        return;
    const qint64 found = qint64(entry.header.size) - lengthSize;
    const quint32 stated = length.size() == lengthSize ? qFromBigEndian<quint32>(length.constData()) : 0;
    if (found < 0)
        m_findings.add(entry.name, entry.localOffset, QStringLiteral("the preset is cut off in its length"));
    else if (stated != found && (stated != none || found > 0))
        m_findings.add(entry.name, entry.localOffset,
                       QStringLiteral("the preset has %1 bytes instead of %2").arg(found).arg(stated));
}

void ContentCheck::finish()
{
    m_pictures.finish();
}

} // namespace Corvelpro
