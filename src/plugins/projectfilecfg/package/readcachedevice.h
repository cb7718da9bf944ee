// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFile>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// The device through which the zip library reads a package. The library searches the last 64 KiB backwards for the end
/// of the archive, and for the marker of a 64-bit one, in small steps, each of which reads from the file. This class
/// reads those bytes once, and again while another process is writing them. Not thread-safe.
class ReadCacheDevice : public QIODevice
{
public:
    explicit ReadCacheDevice(const QString &path);
    /// Takes a file that is already open for reading.
    explicit ReadCacheDevice(std::unique_ptr<QFile> file);
    ~ReadCacheDevice() override;

    /// `mode` must be ReadOnly. False on failure, with the path in errorString(), and at once if it is not a plain
    /// file, for instance a pipe.
    bool open(OpenMode mode) override;

    bool isSequential() const override;
    qint64 size() const override;
    bool seek(qint64 position) override;

    /// Its path, even if it was opened by its handle.
    QString path() const { return m_strPath; }
    /// The underlying file, to read other parts of it.
    QFile &file() { return *m_pFile; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    bool readEnd();
    bool readEndAtRest();

    const QString m_strPath;
    const std::unique_ptr<QFile> m_pFile;
    QByteArray m_end;
    qint64 m_nSize = 0;
    qint64 m_nPosition = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
