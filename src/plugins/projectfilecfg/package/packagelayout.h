#pragma once

#include "projectfilefacts.h"

#include <QByteArrayList>
#include <QString>
#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

/// The names of what lies in a device's directory, and so in a package: formed and read here alone. An entry's name is
/// relative to the directory, with "/" between levels; that of a folder ends in "/".
namespace PackageLayout {

/// Folders of a device's directory. Without separators.
constexpr QLatin1String backgroundFolder = ProjectFileFacts::literal("BKG");
constexpr QLatin1String logoFolder = ProjectFileFacts::literal("LOGO");
constexpr QLatin1String presetFolder = ProjectFileFacts::literal("Preset");

/// "BKG/BKG_7.png", "LOGO/LOGO_7.png", "Preset/7.RPst"
QString backgroundEntry(int keyNo);
QString logoEntry(int keyNo);
QString presetEntry(int number);

bool isFolder(const QString &entryName);
/// By its ending, in any case: a device description, a picture, a preset.
bool isDescription(const QString &entryName);
bool isPicture(const QString &entryName);
bool isPreset(const QString &entryName);

/// In which folder it lies is read with case, unlike its ending.
bool isLogo(const QString &entryName);
bool isInGallery(const QString &entryName);
/// A background or a logo.
bool isGalleryPicture(const QString &entryName);
/// For what is in the gallery: its folder, and the number that its name states; 0 where it states none.
QString galleryFolder(const QString &entryName);
quint16 galleryNumber(const QString &entryName);

/// False for a name that could lead out of the folder to which it is extracted, on any platform, since packages travel:
/// one that is empty or absolute, climbs (by slashes or backslashes), holds a NUL or a drive letter, or has more than
/// PackageLimits::maxDepth levels.
bool isSafeName(const QString &entryName);

/// True for a folder that is called like the files of packages (".png", ".json", ".RPst") and for a file that is called
/// like their folders: it would be in the way of every package that is extracted to the same place later.
bool blocksLaterPackages(const QString &entryName);

/// The one spelling of the path to which a name leads: "BKG/./x" and "BKG//x" are "BKG/x".
QString plainName(const QString &entryName);

/// The names of an archive's entries as text, given as their bytes: no two different ones become one. What is UTF-8
/// stays as it is. In what is not, each byte that belongs to no character, and a byte order mark, which file names
/// lose, is written as "%" and two hexadecimal digits; as "%%" where a name of this archive has a "%" already, and so
/// on, so that no other name can be taken for an escaped one. Empty when that takes more than 16 percent signs, or more
/// text than PackageLimits::maxNamesLength.
QStringList namesOf(const QByteArrayList &entryNames);

} // namespace PackageLayout

} // namespace Internal
} // namespace ProjectFileCfg
