#pragma once

#include "operationresultcodes.h"

#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QPair>
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

class PackageReader;
class PictureDecoder;

/// The job that applies a project file to one device, online or offline.
///
/// The two checks run on the caller's thread, before start(); what changes the device runs on a thread of
/// its own. Every failure leaves a LoadResultCode. One object serves one run.
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
    /// LoadSuccess, so that nothing is shown: the list does not offer such a package.
    bool checkPackageFile();
    /// True when the package's device description fits the target device; run() uses the description. It ends with
    /// LoadDecompressFailed when the package is another one by then, so that no device gets parts of two packages, and
    /// with LoadImportFailed when the device has gone offline or come online since.
    bool checkDevice();

    /// Asks the job to end before the next picture, or to report the cancellation once the transfer is over.
    /// Any thread; a request that comes before the thread has begun is lost.
    void cancel();

    /// The LoadResultCode; valid after a check returned false, or once QThread::finished was emitted.
    int resultCode() const;

    /// Reads a device description that the host has written. Null when the file cannot be read, is no JSON
    /// document with content, or is too much for the memory: above 16 MiB, or above 1,048,576 members,
    /// elements and brackets. Caller's thread.
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
    bool isCheckedPackage(const PackageReader &package) const;
    bool cardsAgree(const Model::Device &target);
    void applyOffline(const std::shared_ptr<Model::Device> &target);
    void applyOnline(const std::shared_ptr<Model::Device> &target);
    bool offlineCopy();
    bool copySourceToOfflineDevice();
    bool onlineSend(const std::shared_ptr<Model::Device> &target);
    bool sendSourceToOnlineDevice(const std::shared_ptr<Model::Device> &target);
    void decodeAhead(PackageReader &package, const QString &entry, PictureDecoder &decoder) const;
    std::shared_ptr<Model::Materail> findMaterail(const QString &entry) const;
    bool sendPicture(const QString &entry, const QString &path, const std::shared_ptr<Model::Device> &target,
                     PictureDecoder &decoder);
    /// `known` holds the thumbnails that were made before, by the paths of their pictures.
    void refreshThumbnail(Model::Materail &materail, QHash<QString, QImage> &known) const;
    QString deviceFolder() const;
    bool fail(LoadResultCode code);
    bool stopIfCanceled();

    std::atomic<bool> m_bCancel{false};
    QString m_strPackagePath;
    QString m_strDeviceIp;
    std::shared_ptr<Model::Device> m_pPackageDevice;
    /// Size and time of the package, and what the device was, at the check.
    QPair<qint64, QDateTime> m_checkedPackage;
    bool m_bCheckedOnline = false;
    std::atomic<int> m_nResultCode{LoadSuccess};
};

} // namespace Internal
} // namespace ProjectFileCfg
