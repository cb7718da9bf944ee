// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "benchmark.h"

#include <QDirIterator>
#include <QFileInfo>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>

/// What the system keeps of files in its page cache.
namespace Benchmark {

/// An open file, or none if it has gone: others rename and remove files while they are measured.
class CachedFile
{
public:
    explicit CachedFile(const QString &path)
        : m_handle(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC))
        , m_size(std::max<qint64>(0, m_handle < 0 ? 0 : ::lseek(m_handle, 0, SEEK_END)))
    {}
    ~CachedFile()
    {
        if (m_handle >= 0)
            ::close(m_handle);
    }

    /// In whole pages, as cachedBytes().
    qint64 size() const { return (m_size + pageSize() - 1) / pageSize() * pageSize(); }

    qint64 cachedBytes() const
    {
        qint64 pages = 0;
        if (kernelCounts(pages))
            return pages * pageSize();
        // Portions, so that a large file does not need a large array.
        constexpr qint64 portion = 256 * MiB;
        for (qint64 offset = 0; offset < m_size; offset += portion)
            pages += cachedPages(offset, std::min(portion, m_size - offset));
        return pages * pageSize();
    }

    /// Has the system write what is still to be written, and drop all of it.
    void forget() const
    {
        require(::fsync(m_handle) == 0 && ::posix_fadvise(m_handle, 0, 0, POSIX_FADV_DONTNEED) == 0,
                "cannot forget a file");
    }

private:
    Q_DISABLE_COPY(CachedFile)

    static qint64 pageSize() { return ::sysconf(_SC_PAGESIZE); }

    /// The system call cachestat (Linux 6.5) takes a thousandth of the time of mincore(): the sampler looks more often.
    bool kernelCounts(qint64 &pages) const
    {
        constexpr long cachestat = 451;
        constexpr quint64 wholeFile[2] = {0, 0};
        // Cached, dirty, being written, evicted, evicted recently.
        quint64 counts[5] = {};
        const bool isKnown = ::syscall(cachestat, m_handle, wholeFile, counts, 0) == 0;
        pages = qint64(counts[0]);
        return isKnown;
    }

    /// Mapping reads nothing.
    qint64 cachedPages(qint64 offset, qint64 size) const
    {
        void *part = ::mmap(nullptr, size_t(size), PROT_READ, MAP_SHARED, m_handle, offset);
        if (part == MAP_FAILED)
            return 0;
        std::vector<unsigned char> pages(size_t((size + pageSize() - 1) / pageSize()));
        const bool isKnown = ::mincore(part, size_t(size), pages.data()) == 0;
        ::munmap(part, size_t(size));
        require(isKnown, "the system does not tell what is in memory");
        return std::count_if(pages.cbegin(), pages.cend(), [](unsigned char page) { return (page & 1) != 0; });
    }

    const int m_handle;
    const qint64 m_size;
};

/// A folder of files: hidden ones too, and those without a name that this process has open.
class CachedFolder
{
public:
    explicit CachedFolder(const QString &path)
        : m_path(path)
    {}

    qint64 size() const
    {
        return sum([](const CachedFile &file) { return file.size(); });
    }
    qint64 cachedBytes() const
    {
        return sum([](const CachedFile &file) { return file.cachedBytes(); });
    }
    void forget() const
    {
        sum([](const CachedFile &file) {
            file.forget();
            return qint64(0);
        });
    }

private:
    qint64 sum(const std::function<qint64(const CachedFile &)> &figure) const
    {
        qint64 all = 0;
        QDirIterator files(m_path, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
        while (files.hasNext())
            all += figure(CachedFile(files.next()));
        const QString handles = QStringLiteral("/proc/self/fd/");
        for (const QString &handle : QDir(handles).entryList(QDir::Files | QDir::System)) {
            const QString target = QFile::symLinkTarget(handles + handle);
            if (target.startsWith(m_path) && target.endsWith(QStringLiteral(" (deleted)")))
                all += figure(CachedFile(handles + handle));
        }
        return all;
    }

    const QString m_path;
};

/// Looks again and again, on a thread of its own, until it is asked for the most that was found.
class CacheSampler
{
public:
    /// `figure` is called on that thread.
    explicit CacheSampler(const std::function<qint64()> &figure)
        : m_thread([this, figure] {
            while (!m_isEnded) {
                m_most = std::max(m_most, figure());
                ++m_samples;
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        })
    {}
    ~CacheSampler() { end(); }

    qint64 most()
    {
        end();
        return m_most;
    }
    int samples()
    {
        end();
        return m_samples;
    }

private:
    Q_DISABLE_COPY(CacheSampler)

    void end()
    {
        m_isEnded = true;
        if (m_thread.joinable())
            m_thread.join();
    }

    std::atomic<bool> m_isEnded{false};
    qint64 m_most = 0;
    int m_samples = 0;
    // Last: it uses the others.
    std::thread m_thread;
};

} // namespace Benchmark
