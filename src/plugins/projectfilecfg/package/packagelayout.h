// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArrayList>
#include <QString>
#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

/// The names in a device's directory, and so in a package. They are built and parsed only here. An entry's name is
/// relative to the directory, with "/" between levels; a folder's name ends in "/".
namespace PackageLayout {

/// A QLatin1String of constant length: not every compiler evaluates strlen() at compile time (clang with a sanitizer
/// does not).
template<int sizeWithEnd>
constexpr QLatin1String literal(const char (&text)[sizeWithEnd])
{
    return QLatin1String(text, sizeWithEnd - 1);
}

/// Extension of a project file.
constexpr QLatin1String packageExtension = literal(".corvelpro");
/// True if `path` ends in the package extension, in any case.
bool hasPackageExtension(const QString &path);
/// `path` without that extension, if it has it. Unlike QFileInfo::baseName(), keeps all other dots.
QString withoutPackageExtension(const QString &path);

/// Folders of a device's directory. Without separators.
constexpr QLatin1String backgroundFolder = literal("BKG");
constexpr QLatin1String logoFolder = literal("LOGO");
constexpr QLatin1String presetFolder = literal("Preset");

/// "BKG/BKG_7.png", "LOGO/LOGO_7.png", "Preset/7.RPst", "192.168.0.10.json": the last one is that of an offline device.
QString backgroundEntry(int keyNo);
QString logoEntry(int keyNo);
QString presetEntry(int number);
QString descriptionEntry(const QString &ip);

bool isFolder(const QString &entryName);
/// Device descriptions, pictures, presets: by extension, in any case.
bool isDescription(const QString &entryName);
bool isPicture(const QString &entryName);
bool isPreset(const QString &entryName);

/// The folder is case-sensitive, unlike the extension.
bool isLogo(const QString &entryName);
bool isInGallery(const QString &entryName);
/// A background or a logo.
bool isGalleryPicture(const QString &entryName);
/// For an entry in the gallery: its folder, and the number in its name; 0 if there is none.
QString galleryFolder(const QString &entryName);
quint16 galleryNumber(const QString &entryName);

/// False for a name that could lead out of the extraction folder on any platform, not only this one: an empty or
/// absolute one, one that contains ".." (between slashes or backslashes), a NUL or a drive letter, or one with more
/// than PackageLimits::maxDepth levels.
bool isSafeName(const QString &entryName);

/// True for a folder named like the files of packages (".png", ".json", ".RPst") and for a file named like their
/// folders: it would block every package that is extracted to the same folder later.
bool blocksLaterPackages(const QString &entryName);

/// The normalised path: "BKG/./x" and "BKG//x" become "BKG/x".
QString plainName(const QString &entryName);

/// Decodes the names of an archive's entries; different names stay different. UTF-8 names are unchanged. In others,
/// each byte that does not belong to a character, and each byte of a byte order mark, which decoding would drop,
/// becomes "%" and two hexadecimal digits. If a name of the archive contains "%", escapes begin with "%%", and so on,
/// so that an escaped name never equals another one. Empty if that takes more than 16 percent signs, or if the names
/// become longer than PackageLimits::maxNamesLength.
QStringList namesOf(const QByteArrayList &entryNames);

} // namespace PackageLayout

} // namespace Internal
} // namespace ProjectFileCfg
