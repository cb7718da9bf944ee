#pragma once

#include "operationresultcodes.h"

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
    /// Before start(): the directory that receives the package, with a trailing separator.
    void setProjectPath(const QString &directory);

    /// Before start(): the pictures that earlier saves encoded. Without a call the job begins with none.
    void setEncodedPictures(const std::shared_ptr<EncodedPictures> &pictures);

    /// Asks the job to end before the next picture or preset. Any thread; a request that comes before the
    /// thread has begun is lost, and one that comes while the package is written comes too late.
    void cancel();

    /// The BackupResultCode of the run; valid once QThread::finished was emitted.
    ///
    /// A run that was cancelled between the pictures and the presets, or whose preset file could not be
    /// opened, ends with BackupSuccess and without a package.
    int resultCode() const;

    /// The path of the package that the run left in place; empty when there is none. Valid once QThread::finished was
    /// emitted.
    QString savedPackagePath() const;

signals:
    /// Progress for the waiting dialog, emitted from the job's thread (the name is part of the interface).
    void signal_operatoerChanged(const QString &strOperInfo);

protected:
    void run() override;

private:
    std::shared_ptr<Model::Device> findDevice();
    QString deviceDirectory() const;
    QString stagingDirectory() const;
    void prepareStageFolders() const;
    bool exportBackgrounds(PictureWriter &writer);
    bool exportLogos(PictureWriter &writer);
    bool offlineResourcesComplete() const;
    bool LoadPreset();
    bool writePreset(const QString &path, const QByteArray &detail, const QString &deviceName);
    bool stopIfCanceled();

    QString m_strDeviceIp;
    QString m_strSpare;
    QString m_strProjectName;
    QString m_strComment;
    QString m_strProjectPath;
    QString m_strSavedPackagePath;
    std::atomic<bool> m_bCancel{false};
    std::atomic<int> m_nResultCode{BackupSuccess};
    std::shared_ptr<EncodedPictures> m_pEncodedPictures;
};

} // namespace Internal
} // namespace ProjectFileCfg
