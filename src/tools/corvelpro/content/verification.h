// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "findings.h"

#include "archivedirectory.h"

#include "packagereader.h"

#include <functional>

namespace Corvelpro {

/// Reads a package to its last byte and looks for every trace of damage. Only reads. Opens the file once: if another
/// file takes its name meanwhile, the verdict is still about the opened one. Main thread.
///
/// Cannot find changes that no checksum in the package covers: in the record's name and comment, or in an entry's
/// permissions.
class Verification
{
public:
    explicit Verification(const QString &path);

    /// `passed` is called with the size of each portion of the file that was read. False if it is no plain file or
    /// cannot be read: `reason` is set then (see reason.h).
    bool run(const std::function<void(qint64 bytes)> &passed, QString *reason);

    const Findings &findings() const { return m_findings; }
    qint64 size() const { return m_size; }
    /// Of the archive's directory, as far as it could be read.
    int entries() const { return m_entries; }
    /// Pictures that could be decoded.
    int pictures() const { return m_pictures; }

private:
    using PackageReader = ProjectFileCfg::Internal::PackageReader;

    void checkRecord(const PackageReader &package, const ArchiveDirectory &directory);
    bool isListable(const PackageReader &package, const ArchiveDirectory &directory);
    void checkContents(PackageReader &package, const ArchiveDirectory &directory,
                       const std::function<void(qint64 bytes)> &passed);

    const QString m_path;
    Findings m_findings;
    qint64 m_size = 0;
    int m_entries = 0;
    int m_pictures = 0;
};

} // namespace Corvelpro
