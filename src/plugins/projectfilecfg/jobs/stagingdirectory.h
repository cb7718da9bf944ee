// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/fwd.h>

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// A device's configuration directory: a save stages pictures and presets there, and packs it.
class StagingDirectory
{
public:
    explicit StagingDirectory(const QString &ip);

    /// Without a trailing separator.
    QString path() const { return m_strPath; }
    /// With a trailing separator.
    QString presetPath() const;
    /// The file of a preset's entry.
    QString presetPath(const QString &entry) const;
    /// The file of a picture's entry, and the entry of such a file.
    QString picturePath(const QString &entry) const;
    QString pictureEntry(const QString &path) const;

    /// Empties the folders of pictures and presets, or creates them.
    void clear() const;
    /// Removes the folder of presets and creates it again; false if it cannot be created.
    bool renewPresetFolder() const;

    /// True if there is a file for each background and logo of the device.
    bool hasPicturesOf(const Model::Device &device) const;

private:
    QString m_strPath;
};

/// Clears a staging directory on construction and on destruction, so that staged files remain only in the package,
/// however the save ends.
class StagedFiles
{
public:
    explicit StagedFiles(const StagingDirectory &directory);
    ~StagedFiles();

private:
    Q_DISABLE_COPY(StagedFiles)

    const StagingDirectory m_directory;
};

} // namespace Internal
} // namespace ProjectFileCfg
