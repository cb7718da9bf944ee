// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectthumbnail.h"

#include "commandline/interrupt.h"

#include "contentscan.h"
#include "namelessfile.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "picturereader.h"
#include "plainfile.h"
#include "replacingfile.h"
#include "zippackagehandle.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using namespace ProjectFileCfg::Internal::PackageLayout;

namespace {

bool isBackground(const QString &path)
{
    return isGalleryPicture(path) && path.compare(backgroundEntry(galleryNumber(path)), Qt::CaseInsensitive) == 0;
}

/// Empty if there is none.
QString firstBackground(const QStringList &entries)
{
    QString first;
    for (const QString &entry : entries) {
        const QString path = plainName(entry);
        if (isBackground(path) && (first.isEmpty() || galleryNumber(path) < galleryNumber(plainName(first))))
            first = entry;
    }
    return first;
}

bool isEmptyOrPng(const QString &path, QString *reason)
{
    constexpr int signatureSize = 8;
    QFile file(path);
    if (!openPlainFile(file, false, reason))
        return false;
    const QByteArray head = file.read(signatureSize);
    PictureScan scan;
    scan.feed(head.constData(), head.size());
    return head.isEmpty() || scan.isPng();
}

Outcome wantReplaceable(const QString &path)
{
    QString reason = QStringLiteral("already exists, and is no PNG");
    return wantFreeName(path).isDone() || isEmptyOrPng(path, &reason)
               ? Outcome()
               : Outcome::refused(QStringLiteral("%1: %2").arg(path, reason));
}

} // namespace

ProjectThumbnail::ProjectThumbnail(const QString &package, const QString &target)
    : m_package(package)
    , m_target(target)
{}

Outcome ProjectThumbnail::draw(int side)
{
    QImage picture;
    Outcome outcome = wantReplaceable(m_target);
    if (outcome.isDone())
        outcome = read(picture, side);
    if (outcome.isDone() && Interrupt::came())
        outcome = Outcome::failed(QStringLiteral("interrupted, nothing was drawn"));
    return outcome.isDone() ? write(picture) : outcome;
}

Outcome ProjectThumbnail::unreadable(const QString &reason) const
{
    return Outcome::failed(QStringLiteral("%1: %2: %3").arg(m_package, m_entry, reason));
}

Outcome ProjectThumbnail::read(QImage &picture, int side)
{
    Outcome file = wantPlainFile(m_package);
    if (!file.isDone())
        return file;
    PackageReader reader(m_package);
    QString reason;
    if (!reader.isListable(&reason))
        return Outcome::failed(reason);
    if (!ZipPackageHandle::checkPacketChecksum(reader, &reason))
        return Outcome::refused(QStringLiteral("%1: not a valid project file: %2").arg(m_package, reason));
    m_entry = firstBackground(reader.entries());
    if (m_entry.isEmpty())
        return Outcome::refused(QStringLiteral("%1: no background in it").arg(m_package));

    const auto content = openNamelessFile(QDir::tempPath(), &reason);
    if (!content || !reader.read(m_entry, *content, PackageLimits::maxPictureFileSize, &reason) || !content->seek(0))
        return unreadable(reason);
    PictureReader decoder(content.get());
    decoder.fitInto({side, side});
    picture = decoder.read(&reason);
    m_size = picture.size();
    return picture.isNull() ? unreadable(reason) : Outcome();
}

Outcome ProjectThumbnail::write(const QImage &picture) const
{
    ReplacingFile file(m_target, ReplacingFile::Durability::NotFlushed);
    QString reason;
    if (!file.create(ReplacingFile::MissingFolders::NotMade, &reason))
        return Outcome::failed(reason);
    QImageWriter writer(&file.file(), "png");
    if (!writer.write(picture))
        return Outcome::failed(QStringLiteral("cannot write %1: %2").arg(m_target, writer.errorString()));
    return file.commit(ReplacingFile::ExistingTarget::Replaced, &reason) ? Outcome() : Outcome::failed(reason);
}

} // namespace Corvelpro
