// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagecheck.h"

#include <QDataStream>
#include <QHash>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>

#include <quazip.h>
#include <quazipfile.h>

namespace {

QHash<QString, QByteArray> readEntries(QuaZip &archive)
{
    QHash<QString, QByteArray> entries;
    for (bool more = archive.goToFirstFile(); more; more = archive.goToNextFile()) {
        QuaZipFile file(&archive);
        if (file.open(QIODevice::ReadOnly))
            entries.insert(archive.getCurrentFileName(), file.readAll());
    }
    return entries;
}

QString pictureDifference(const QHash<QString, QByteArray> &entries, const QString &folder,
                          const QMap<quint8, Simulation::PictureState> &pictures, QImage::Format format)
{
    for (auto picture = pictures.begin(); picture != pictures.end(); ++picture) {
        const QString entry = QStringLiteral("%1/%1_%2.png").arg(folder, QString::number(picture.key()));
        if (!entries.contains(entry))
            return QStringLiteral("%1 is missing").arg(entry);
        const QImage saved = QImage::fromData(entries.value(entry), "PNG").convertToFormat(format);
        if (saved != picture->pixels.convertToFormat(format))
            return QStringLiteral("the pixels of %1 differ").arg(entry);
    }
    return QString();
}

QString presetDifference(const QHash<QString, QByteArray> &entries,
                         const QMap<quint16, Simulation::PresetState> &presets)
{
    for (auto preset = presets.begin(); preset != presets.end(); ++preset) {
        const QString entry = QStringLiteral("Preset/%1.RPst").arg(preset.key());
        QByteArray saved;
        QDataStream stream(entries.value(entry));
        stream >> saved;
        if (!entries.contains(entry) || saved != preset->bytes)
            return QStringLiteral("the bytes of %1 differ").arg(entry);
    }
    return QString();
}

} // namespace

QString packageDifference(const QString &packagePath, const Simulation::HardwareState &hardware,
                          const QString &projectName, const QString &comment)
{
    QuaZip archive(packagePath);
    if (!archive.open(QuaZip::mdUnzip))
        return QStringLiteral("%1 cannot be opened").arg(packagePath);
    const QHash<QString, QByteArray> entries = readEntries(archive);

    const QJsonObject record = QJsonDocument::fromJson(archive.getComment().toUtf8()).object();
    if (record.value(QLatin1String("projectName")) != projectName || record.value(QLatin1String("comment")) != comment)
        return QStringLiteral("the record carries another name or comment");

    QString difference = pictureDifference(entries, QStringLiteral("BKG"), hardware.backgrounds, QImage::Format_RGB32);
    if (difference.isEmpty())
        difference = pictureDifference(entries, QStringLiteral("LOGO"), hardware.logos, QImage::Format_ARGB32);
    if (difference.isEmpty())
        difference = presetDifference(entries, hardware.presets);
    return difference;
}
