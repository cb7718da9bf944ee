// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturesheet.h"

#include "picturecomparison.h"

#include "reason.h"
#include "replacingfile.h"

#include <QImageWriter>
#include <QPainter>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

constexpr QSize cell(320, 180);
constexpr int gap = 8;

QSize scaledSize(const QSize &size)
{
    const QSize fitting = size.scaled(cell, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    return size.boundedTo(fitting);
}

QImage scaled(const QImage &picture)
{
    return picture.scaled(scaledSize(picture.size()), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage differenceOf(const QImage &before, const QImage &after)
{
    QImage shown(scaledSize(before.size()), QImage::Format_RGB32);
    if (before.size() != after.size()) {
        shown.fill(Qt::darkRed);
        return shown;
    }
    shown.fill(Qt::black);
    for (int y = 0; y < before.height(); ++y) {
        const auto *one = reinterpret_cast<const QRgb *>(before.constScanLine(y));
        const auto *other = reinterpret_cast<const QRgb *>(after.constScanLine(y));
        auto *line = reinterpret_cast<QRgb *>(shown.scanLine(int(qint64(y) * shown.height() / before.height())));
        for (int x = 0; x < before.width(); ++x) {
            // A difference of 1 has to be seen.
            constexpr int least = 64;
            const int distance = pixelDifference(one[x], other[x]);
            const int brightness = distance == 0 ? 0 : least + distance * (255 - least) / 255;
            QRgb &pixel = line[qint64(x) * shown.width() / before.width()];
            pixel = qRgb(std::max(qRed(pixel), brightness), std::max(qGreen(pixel), brightness),
                         std::max(qBlue(pixel), brightness));
        }
    }
    return shown;
}

void drawCentred(QPainter &painter, const QRect &place, const QImage &picture)
{
    QRect area(QPoint(), picture.size());
    area.moveCenter(place.center());
    painter.drawImage(area.topLeft(), picture);
}

} // namespace

int PictureSheet::add(const QImage &before, const QImage &after)
{
    if (rows() >= maxRows) {
        ++m_leftOut;
        return 0;
    }
    m_rows.append({scaled(before), scaled(after), differenceOf(before, after)});
    return rows();
}

QImage PictureSheet::drawn() const
{
    QImage sheet(gap + 3 * (cell.width() + gap), gap + rows() * (cell.height() + gap), QImage::Format_RGB32);
    sheet.fill(Qt::darkGray);
    QPainter painter(&sheet);
    int y = gap;
    for (const Row &row : m_rows) {
        int x = gap;
        for (const QImage &picture : {row.before, row.after, row.difference}) {
            drawCentred(painter, QRect(QPoint(x, y), cell), picture);
            x += cell.width() + gap;
        }
        y += cell.height() + gap;
    }
    return sheet;
}

bool PictureSheet::write(const QString &path, QString *reason) const
{
    ReplacingFile file(path, ReplacingFile::Durability::FlushedToDisk);
    if (!file.create(ReplacingFile::MissingFolders::NotMade, reason))
        return false;
    QImageWriter writer(&file.file(), "png");
    if (!writer.write(drawn()))
        return failBecause(reason, QStringLiteral("cannot write %1: %2").arg(path, writer.errorString()));
    return file.commit(ReplacingFile::ExistingTarget::Kept, reason);
}

} // namespace Corvelpro
