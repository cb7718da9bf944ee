#pragma once

#include <QFile>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// A package's file as the zip library reads it. The library looks for the end of an archive, and for the mark of a
/// 64-bit one, by going backwards through the last 64 KiB in small steps, each of which is a read of the file; here
/// these bytes are read once, and not while somebody is writing them. Not for use by two threads at once.
class PackageFile : public QIODevice
{
public:
    explicit PackageFile(const QString &path);
    /// One that is open already, for reading.
    explicit PackageFile(std::unique_ptr<QFile> file);
    ~PackageFile() override;

    /// In the one mode there is, ReadOnly. False when that fails, or when it is no file that can be read anywhere, as
    /// a pipe is not; that is told at once.
    bool open(OpenMode mode) override;

    bool isSequential() const override;
    qint64 size() const override;
    bool seek(qint64 position) override;

    /// The file itself, for who reads other parts of it.
    QFile &file() { return *m_file; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    bool readEnd();
    bool readEndAtRest();

    const std::unique_ptr<QFile> m_file;
    QByteArray m_end;
    qint64 m_nSize = 0;
    qint64 m_nPosition = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
