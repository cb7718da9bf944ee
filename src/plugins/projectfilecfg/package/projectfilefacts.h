#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// What several classes must agree on: stated here once.
namespace ProjectFileFacts {

/// The length is counted by the compiler alone: not every one takes strlen for a constant, clang with a sanitizer
/// does not.
template<int sizeWithEnd>
constexpr QLatin1String literal(const char (&text)[sizeWithEnd])
{
    return QLatin1String(text, sizeWithEnd - 1);
}

/// Extension of a project file.
constexpr QLatin1String packageExtension = literal(".corvelpro");

/// Keys of the info record in a package's archive comment.
constexpr QLatin1String checksumKey = literal("Checksum");
constexpr QLatin1String projectNameKey = literal("projectName");
constexpr QLatin1String commentKey = literal("comment");

/// Format of the time stamp that is proposed as a project's comment.
constexpr QLatin1String timeStampFormat = literal("yyyyMMdd_hhmmss");

/// The user's Documents folder, without a trailing separator.
QString documentsPath();

/// The one directory of all project files, with a trailing "/".
QString projectFilesPath();

/// True when `path` ends in the package extension, in any mix of upper and lower case.
bool hasPackageExtension(const QString &path);

} // namespace ProjectFileFacts

} // namespace Internal
} // namespace ProjectFileCfg
