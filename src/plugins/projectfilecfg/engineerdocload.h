#pragma once

#include "operationresultcodes.h"

#include <QHash>
#include <QImage>
#include <QString>
#include <QThread>

#include <atomic>
#include <memory>

namespace Model {
class Device;
class Materail;
} // namespace Model

namespace ProjectFileCfg {
namespace Internal {

class PackagedPicture;
class PackageReader;
class PictureDecoder;

/// The job that applies a project file to one device, online or offline.
///
/// The two checks run on the caller's thread, before start(); what changes the device runs on a thread of
/// its own. Every failure leaves a LoadResultCode, an exception of the host LoadImportFailed. One object serves one
/// run.
///
/// The package is copied aside before the first check (see PackageSnapshot) and held to the end of the run: what was
/// checked is what is applied, whatever becomes of the file meanwhile. Descriptions and pictures are extracted to the
/// host's extraction folder as well, where others find them; what is applied never comes from there.
///
/// The caller resets an online device between checkDevice() and the run. So the check refuses, with the same code,
/// everything for which the run would refuse the package, and after it an extraction that fails ends the run no more:
/// the device gets the picture as long as its content can be read.
class EngineerDocLoad : public QThread
{
    Q_OBJECT

public:
    explicit EngineerDocLoad(QObject *parent);
    ~EngineerDocLoad() override;

    void setPackagePath(const QString &path);
    void setDeviceIp(const QString &ip);
    QString deviceIp() const;

    /// True when the package is there and its checksum is right. A wrong checksum leaves the result code at
    /// LoadSuccess, so that nothing is shown: the list does not offer such a package. Ends with LoadDecompressFailed
    /// when there is no room for the copy.
    bool checkPackageFile();
    /// True when the package's device description fits the target device, and its pictures are not too many pixels
    /// together; run() uses the description. For a device that is online, true means as well that every picture can be
    /// extracted, read to its end, decoded and put in its place (see ReadinessCheck).
    bool checkDevice();

    /// Lets go of the package, and of the room that it takes, when the run does not come after all. Not while it runs.
    void releasePackage();

    /// Asks the job to end before the next picture, or to report the cancellation once the transfer is over.
    /// Any thread; a request that comes before the thread has begun is lost.
    void cancel();

    /// The LoadResultCode; valid after a check returned false, or once QThread::finished was emitted.
    int resultCode() const;

    /// Reads a device description that the host has written. Null when the file cannot be read, is no JSON
    /// document with content, or is too much for the memory (see readDeviceDescription()). Caller's thread.
    std::shared_ptr<Model::Device> unserailizeDevice(const QString &path);

    /// Extracts the device description to the target's directory under the target's address. True as well
    /// when the package has none. No run uses it: an offline device gets its description from its model.
    bool copyConfigFileToDevice();

signals:
    /// Progress for the waiting dialog, emitted from the job's thread (the name is part of the interface).
    void signal_operatoerChanged(const QString &strOperType);

protected:
    void run() override;

private:
    bool isFittingDevice();
    bool openPackage();
    bool readDescription();
    bool cardsAgree(const Model::Device &target);
    void apply();
    void applyOffline(const std::shared_ptr<Model::Device> &target);
    void applyOnline(const std::shared_ptr<Model::Device> &target);
    bool offlineCopy();
    bool copySourceToOfflineDevice();
    bool onlineSend(const std::shared_ptr<Model::Device> &target);
    bool sendSourceToOnlineDevice(const std::shared_ptr<Model::Device> &target);
    void decodeAhead(const QString &entry, PictureDecoder &decoder);
    bool sendPicture(const QString &entry, const std::shared_ptr<Model::Device> &target, PictureDecoder &decoder);
    /// `known` holds the thumbnails that were made before, by the paths of their pictures.
    void refreshThumbnail(Model::Materail &materail, QHash<QString, QImage> &known) const;
    QString deviceFolder() const;
    bool fail(LoadResultCode code);
    bool stopIfCanceled();
    /// Does the work; when it throws, says so and fails with LoadImportFailed.
    template<typename Work>
    bool guarded(const Work &work);

    std::atomic<bool> m_bCancel{false};
    QString m_strPackagePath;
    QString m_strDeviceIp;
    std::shared_ptr<Model::Device> m_pPackageDevice;
    /// The copy; null before the first check and after the run.
    std::unique_ptr<PackageReader> m_package;
    /// What the device was at the check.
    bool m_bCheckedOnline = false;
    std::atomic<int> m_nResultCode{LoadSuccess};
};

} // namespace Internal
} // namespace ProjectFileCfg
