// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "reason.h"

#include <QFile>

#include <deque>

namespace ProjectFileCfg {
namespace Internal {

/// Writes large files without filling the page cache with them: a bounded distance behind the writer, what was written
/// is flushed to disk and dropped from the cache. Otherwise gigabytes of unwritten data push everything else out of
/// memory, and a flush at the end waits for all of it while the disk was idle before.
///
/// One object for files that are written one after another. Not thread-safe.
class FlushBehind
{
public:
    /// In bytes, for the file being written and again for the files before it. Large enough that the disk never waits
    /// for the writer, and that what the zip library goes back to is usually still cached.
    static constexpr qint64 defaultDistance = 32 * 1024 * 1024;

    enum class Begin {
        /// For a file that is flushed at its end, so that the flush has less to wait for.
        AtOnce,
        /// For files that may be removed soon: nothing is written before the distance requires it.
        BeyondDistance
    };

    explicit FlushBehind(Begin begin, qint64 distance = defaultDistance);
    ~FlushBehind();

    /// To call after `size` bytes were written to the open file, anywhere in it. Waits for the disk if it is too far
    /// behind. False if the disk refused something written earlier, with the reason in `errno`: no later flush reports
    /// it.
    bool wrote(int handle, qint64 size);

    /// To call when a file is complete, before it is closed: the next files' distance includes it. Not needed if the
    /// file is flushed now. Nothing is written of files that have been removed by then, nor of small ones (see
    /// PageCache). False as above.
    bool finish(int handle);

private:
    Q_DISABLE_COPY(FlushBehind)

    struct Finished
    {
        int nHandle = -1;
        qint64 nSize = 0;
        bool bBegun = false;
    };

    void beginWritingFinished();
    bool settleOldest();

    const Begin m_begin;
    const qint64 m_nDistance;
    /// Written to the current file since the last look at it.
    qint64 m_nWritten = 0;
    std::deque<Finished> m_finished;
    qint64 m_nFinishedSize = 0;
};

/// A file, of class QFile or QTemporaryFile, that is written with a FlushBehind.
template<typename File>
class FlushedBehind : public File
{
public:
    /// `flushBehind` outlives the file; null leaves it to the system when to write.
    template<typename... Arguments>
    explicit FlushedBehind(FlushBehind *flushBehind, const Arguments &...arguments)
        : File(arguments...)
        , m_pFlushBehind(flushBehind)
    {}

    /// Why the disk has refused something that was written before; empty if it has not. It is lost, even if all later
    /// writes succeed.
    QString refusal() const { return m_strRefusal; }

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        const qint64 count = File::writeData(data, size);
        if (count <= 0 || !m_pFlushBehind || m_pFlushBehind->wrote(this->handle(), count))
            return count;
        m_strRefusal = systemError();
        this->setErrorString(m_strRefusal);
        return -1;
    }

private:
    FlushBehind *const m_pFlushBehind;
    QString m_strRefusal;
};

} // namespace Internal
} // namespace ProjectFileCfg
