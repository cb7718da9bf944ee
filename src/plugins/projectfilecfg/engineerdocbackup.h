#pragma once

#include "operationresultcodes.h"

#include <QHash>
#include <QString>
#include <QThread>

#include <atomic>
#include <memory>

namespace Model {
class Device;
}

namespace ProjectFileCfg {
namespace Internal {

class EncodedPictures;
class PictureWriter;

namespace DurableFile {
class FileIdentity;
}

/// The job that saves one device's configuration into a project file, on a thread of its own.
///
/// It has the host write the device models, stages pictures and presets in the device's configuration
/// directory, packs that directory and leaves a BackupResultCode. One object serves one run.
class EngineerDocBackup : public QThread
{
    Q_OBJECT

public:
    EngineerDocBackup(QObject *parent, const QString &ip);
    ~EngineerDocBackup() override;

    /// Before start(): the address of the device to save.
    void setDeviceIp(const QString &ip);
    /// Before start(): `name` becomes the package's base name and stands in its record, as does `comment`.
    void setProjectInfo(const QString &name, const QString &comment);
    /// Before start(): the directory that receives the package, with a trailing separator. It is made where it is
    /// missing, unlike a folder to which a separator in the name leads. The package replaces only the one that was
    /// there when the run began: where another has come meanwhile, that one stays and the run ends with
    /// BackupEncryptFailed.
    void setProjectPath(const QString &directory);

    /// Before start(): the pictures that earlier saves encoded. Without a call the job begins with none.
    void setEncodedPictures(const std::shared_ptr<EncodedPictures> &pictures);

    /// Asks the job to end before the next picture or preset. Any thread; a request that comes before the
    /// thread has begun is lost, and one that comes while the package is written comes too late. While pictures are
    /// still being encoded the next one counts as not begun.
    void cancel();

    /// The BackupResultCode of the run; valid once QThread::finished was emitted.
    ///
    /// A run that was cancelled between the last picture and the first preset, or whose preset file could not be
    /// opened, ends with BackupSuccess and without a package. What an operation of the host throws ends it with
    /// BackupEncryptFailed. However it ends, no picture or preset of an online device stays in its directory.
    int resultCode() const;

    /// The package that the run left in place and found valid when it read it back; valid like the result code.
    /// Empty where the run left no package, also where the code is BackupSuccess: what is to follow only a save that
    /// was made asks here.
    QString savedPackagePath() const;

signals:
    /// Progress for the waiting dialog, emitted from the job's thread (the name is part of the interface).
    void signal_operatoerChanged(const QString &strOperInfo);

protected:
    void run() override;

private:
    void save();
    void pack(const QString &packagePath, const DurableFile::FileIdentity &previous);
    bool fail(const QString &reason);
    std::shared_ptr<Model::Device> findDevice();
    QString deviceDirectory() const;
    QString stagingDirectory() const;
    QString presetDirectory() const;
    bool exportPictures();
    bool exportBackgrounds(PictureWriter &writer);
    bool exportLogos(PictureWriter &writer);
    bool offlineResourcesComplete() const;
    bool LoadPreset();
    bool writePreset(const QString &entry, const QByteArray &detail, const QString &deviceName);
    bool stopIfCanceled();

    QString m_strDeviceIp;
    QString m_strSpare;
    QString m_strProjectName;
    QString m_strComment;
    QString m_strProjectPath;
    std::atomic<bool> m_bCancel{false};
    std::atomic<int> m_nResultCode{BackupSuccess};
    QString m_strSavedPackagePath;
    std::shared_ptr<EncodedPictures> m_pEncodedPictures;
    /// Sizes of what this run staged, by the names that the entries will have.
    QHash<QString, qint64> m_hashStaged;
};

} // namespace Internal
} // namespace ProjectFileCfg
