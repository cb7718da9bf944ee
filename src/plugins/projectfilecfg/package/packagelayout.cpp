// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagelayout.h"

#include "packagelimits.h"

#include <QDir>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {
namespace PackageLayout {

namespace {

constexpr QLatin1String descriptionEnding = literal(".json");
constexpr QLatin1String pictureEnding = literal(".png");
constexpr QLatin1String presetEnding = literal(".RPst");

QString pictureEntry(QLatin1String folder, int keyNo)
{
    return QStringLiteral("%1/%1_%2").arg(folder, QString::number(keyNo)) + pictureEnding;
}

bool hasDriveLetter(const QString &name)
{
    return name.size() > 1 && name.at(1) == QLatin1Char(':') && name.at(0).isLetter();
}

bool isReservedFolderName(const QString &name)
{
    return name.compare(backgroundFolder, Qt::CaseInsensitive) == 0 ||
           name.compare(logoFolder, Qt::CaseInsensitive) == 0 || name.compare(presetFolder, Qt::CaseInsensitive) == 0;
}

bool hasFileEnding(const QString &name)
{
    return isDescription(name) || isPicture(name) || isPreset(name);
}

/// Keeps NUL characters, unlike QString::fromUtf8(QByteArray).
QString textOf(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), std::max(bytes.size(), 0));
}

/// The size in bytes of the character at `index`; 0 if none begins there, or if it is a byte order mark, which decoding
/// drops.
int characterSize(const QByteArray &bytes, int index)
{
    const auto lead = uchar(bytes.at(index));
    if (lead < 0x80)
        return 1;
    // A fast path for nearly every stray byte, since a name may have thousands.
    if (index + 1 == bytes.size() || (uchar(bytes.at(index + 1)) & 0xC0) != 0x80)
        return 0;
    const QByteArray candidate = bytes.mid(index, lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4);
    return textOf(candidate).toUtf8() == candidate ? candidate.size() : 0;
}

bool isPlain(const QByteArray &name, const QString &text)
{
    return !text.contains(QChar(QChar::ByteOrderMark)) && text.toUtf8() == name;
}

QString escaped(const QByteArray &name, const QByteArray &mark)
{
    constexpr char digits[] = "0123456789ABCDEF";
    QByteArray result;
    for (int index = 0; index < name.size();) {
        const int size = characterSize(name, index);
        const auto byte = uchar(name.at(index));
        if (size > 0)
            result.append(name.constData() + index, size);
        else
            result.append(mark).append(digits[byte / 16]).append(digits[byte % 16]);
        index += std::max(size, 1);
    }
    return textOf(result);
}

} // namespace

QString backgroundEntry(int keyNo)
{
    return pictureEntry(backgroundFolder, keyNo);
}

QString logoEntry(int keyNo)
{
    return pictureEntry(logoFolder, keyNo);
}

QString presetEntry(int number)
{
    return presetFolder + QLatin1Char('/') + QString::number(number) + presetEnding;
}

QString descriptionEntry(const QString &ip)
{
    return ip + descriptionEnding;
}

bool isFolder(const QString &entryName)
{
    return entryName.endsWith(QLatin1Char('/'));
}

bool isDescription(const QString &entryName)
{
    return entryName.endsWith(descriptionEnding, Qt::CaseInsensitive);
}

bool isPicture(const QString &entryName)
{
    return entryName.endsWith(pictureEnding, Qt::CaseInsensitive);
}

bool isPreset(const QString &entryName)
{
    return entryName.endsWith(presetEnding, Qt::CaseInsensitive);
}

bool isLogo(const QString &entryName)
{
    return entryName.startsWith(logoFolder + QLatin1Char('/'));
}

bool isInGallery(const QString &entryName)
{
    return isLogo(entryName) || entryName.startsWith(backgroundFolder + QLatin1Char('/'));
}

bool isGalleryPicture(const QString &entryName)
{
    return isPicture(entryName) && isInGallery(entryName);
}

QString galleryFolder(const QString &entryName)
{
    return isLogo(entryName) ? logoFolder : backgroundFolder;
}

quint16 galleryNumber(const QString &entryName)
{
    // Removes the fixed parts wherever they are in the name: that is how existing packages have always been read.
    const QString folder = galleryFolder(entryName);
    return entryName.toUpper()
        .remove(folder + QLatin1Char('/') + folder + QLatin1Char('_'))
        .remove(QString(pictureEnding).toUpper())
        .toUShort();
}

bool isSafeName(const QString &entryName)
{
    if (entryName.isEmpty() || entryName.contains(QChar(QChar::Null)))
        return false;
    const QString name = QString(entryName).replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (name.startsWith(QLatin1Char('/')))
        return false;
    const QStringList parts = name.split(QLatin1Char('/'));
    // The fragment of a file called "." would be in the folder above.
    return parts.size() <= PackageLimits::maxDepth && parts.last() != QLatin1String(".") &&
           std::none_of(parts.begin(), parts.end(), [](const QString &part) {
               return part.trimmed() == QLatin1String("..") || hasDriveLetter(part);
           });
}

bool blocksLaterPackages(const QString &entryName)
{
    const QString name = QDir::cleanPath(entryName);
    if (!isFolder(entryName) && isReservedFolderName(name))
        return true;
    const QStringList folders = name.split(QLatin1Char('/')).mid(0, name.count(QLatin1Char('/')) + isFolder(entryName));
    return std::any_of(folders.begin(), folders.end(), hasFileEnding);
}

QString plainName(const QString &entryName)
{
    return QDir::cleanPath(entryName) + (isFolder(entryName) ? QLatin1String("/") : QLatin1String(""));
}

QStringList namesOf(const QByteArrayList &entryNames)
{
    constexpr int longestMark = 16;
    QStringList names;
    bool isAllPlain = true;
    for (const QByteArray &name : entryNames) {
        names.append(textOf(name));
        isAllPlain = isAllPlain && isPlain(name, names.last());
    }
    if (isAllPlain)
        return names;

    QByteArray mark("%");
    while (mark.size() <= longestMark && std::any_of(entryNames.begin(), entryNames.end(),
                                                     [&mark](const QByteArray &name) { return name.contains(mark); }))
        mark += '%';
    qint64 length = 0;
    for (int index = 0; index < names.size(); ++index) {
        if (!isPlain(entryNames.at(index), names.at(index)))
            names[index] = escaped(entryNames.at(index), mark);
        length += names.at(index).size();
        if (mark.size() > longestMark || length > PackageLimits::maxNamesLength)
            return QStringList();
    }
    return names;
}

bool hasPackageExtension(const QString &path)
{
    return path.endsWith(packageExtension, Qt::CaseInsensitive);
}

QString withoutPackageExtension(const QString &path)
{
    return hasPackageExtension(path) ? path.left(path.size() - packageExtension.size()) : path;
}

} // namespace PackageLayout
} // namespace Internal
} // namespace ProjectFileCfg
