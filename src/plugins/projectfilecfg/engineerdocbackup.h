// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

#include <QHash>
#include <QString>
#include <QThread>

#include <atomic>
#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class EncodedPictures;
class PictureWriter;
class StagingDirectory;

namespace FileSystem {
class FileIdentity;
}

/// The job that saves one device's configuration into a project file, on its own thread.
///
/// It has the host write the device models, stages pictures and presets in the device's configuration directory, packs
/// that directory and sets a BackupResultCode. Use one object for one run.
class EngineerDocBackup : public QThread
{
    Q_OBJECT

public:
    EngineerDocBackup(QObject *parent, const QString &ip);
    ~EngineerDocBackup() override;

    /// Before start(): the address of the device to save.
    void setDeviceIp(const QString &ip) { m_strDeviceIp = ip; }
    QString deviceIp() const { return m_strDeviceIp; }
    /// Before start(): `name` becomes the package's base name; the record contains it and `comment`.
    void setProjectInfo(const QString &name, const QString &comment);
    /// Before start(): the package's directory, with a trailing separator. It is created if it is missing, but a
    /// sub-folder that a separator in the name leads to is not.
    void setProjectPath(const QString &directory) { m_strProjectPath = directory; }

    /// The file that a package of that name in the directory would replace now; it may be none. Any thread.
    static std::shared_ptr<const FileSystem::FileIdentity> fileAt(const QString &directory, const QString &name);
    /// Before start(): the only file that the package replaces. If another one is there by then, that one stays and the
    /// run ends with BackupEncryptFailed. By default it is the one that is there when the run begins.
    void setReplaceable(const std::shared_ptr<const FileSystem::FileIdentity> &file) { m_pReplaceable = file; }

    /// Before start(): the cache of encoded pictures. By default the job uses an empty one.
    void setEncodedPictures(const std::shared_ptr<EncodedPictures> &pictures) { m_pEncodedPictures = pictures; }

    /// Asks the job to end before the next picture or preset. Any thread. A request is lost before the thread has
    /// started, in time while the last pictures are being encoded, and too late while the package is being written.
    void cancel() { m_bCancel = true; }

    /// Instead of a run, for which the system has no thread: ends with BackupEncryptFailed.
    void failToStart();

    /// The BackupResultCode of the run; valid once QThread::finished was emitted.
    ///
    /// A run that was cancelled between the last picture and the first preset, or whose preset file could not be
    /// opened, ends with BackupSuccess and without a package. An exception from the host ends it with
    /// BackupEncryptFailed. However the run ends, no picture or preset of an online device stays in its directory.
    int resultCode() const { return m_nResultCode; }

    /// The path of the saved package, which the run has read back and found valid; valid like the result code. Empty if
    /// there is no package, even with BackupSuccess. Check it before doing anything that relies on the save.
    QString savedPackagePath() const { return m_strSavedPackagePath; }

signals:
    /// Progress for the waiting dialog, emitted from the job's thread (the name is part of the interface).
    void signal_operatoerChanged(const QString &strOperInfo);

protected:
    void run() override;

private:
    void save();
    void pack(const FileSystem::FileIdentity &replaceable);
    /// Sets the code, logs the reason and returns false.
    bool fail(const QString &reason, BackupResultCode code = BackupEncryptFailed);
    std::shared_ptr<Model::Device> findDevice();
    StagingDirectory directory() const;
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
    std::shared_ptr<const FileSystem::FileIdentity> m_pReplaceable;
    std::atomic<bool> m_bCancel{false};
    std::atomic<int> m_nResultCode{BackupSuccess};
    QString m_strSavedPackagePath;
    std::shared_ptr<EncodedPictures> m_pEncodedPictures;
    /// Sizes of the files that this run staged, by entry name.
    QHash<QString, qint64> m_staged;
};

} // namespace Internal
} // namespace ProjectFileCfg
