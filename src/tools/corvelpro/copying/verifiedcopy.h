// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/outcome.h"

#include <QString>

#include <functional>

class QFile;

namespace ProjectFileCfg {
namespace Internal {
class ReplacingFile;
}
} // namespace ProjectFileCfg

namespace Corvelpro {

/// A copy of a project file that gets its name only after it was flushed, read back and found equal to the data read
/// from the original. Until then it is a hidden file in the same folder (see ReplacingFile), which only a killed
/// process leaves behind. Replaces nothing.
class VerifiedCopy
{
public:
    enum class Proof {
        /// What was read back came from the disk.
        Disk,
        /// It may have come from the system's memory.
        Memory
    };

    /// `step` is called with the numbers of bytes that were read since, twice the file's size together. The copy ends
    /// when it returns false.
    VerifiedCopy(const QString &source, const QString &target, const std::function<bool(qint64 bytes)> &step);

    /// Refuses a source that is no valid project file, and a target that exists.
    Outcome run();

    /// After run(), if it was done.
    Proof proof() const { return m_proof; }

private:
    bool write(ProjectFileCfg::Internal::ReplacingFile &copy, QString *reason);
    bool readBack(const QString &path, QString *reason);

    const QString m_source;
    const QString m_target;
    const std::function<bool(qint64 bytes)> m_step;
    QByteArray m_digest;
    Proof m_proof = Proof::Memory;
};

} // namespace Corvelpro
