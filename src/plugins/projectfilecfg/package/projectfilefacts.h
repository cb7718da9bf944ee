#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Facts that several classes share.
namespace ProjectFileFacts {

/// A QLatin1String whose length is a constant: not every compiler evaluates strlen() at compile time, for instance not
/// clang with a sanitizer.
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

/// Format of the time stamp proposed as a project's comment.
constexpr QLatin1String timeStampFormat = literal("yyyyMMdd_hhmmss");

/// The user's Documents folder, without a trailing separator.
QString documentsPath();

/// The one directory of all project files, with a trailing "/".
QString projectFilesPath();

/// True if `path` ends in the package extension, in any case.
bool hasPackageExtension(const QString &path);

} // namespace ProjectFileFacts

} // namespace Internal
} // namespace ProjectFileCfg
