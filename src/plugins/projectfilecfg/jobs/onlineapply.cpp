#include "onlineapply.h"

#include <core/icore.h>

#include <QDebug>
#include <QFile>

using Core::ICore;
using Model::Materail;

namespace ProjectFileCfg {
namespace Internal {

OnlineApply::OnlineApply(PackageReader &package, const std::shared_ptr<Model::Device> &description,
                         const std::shared_ptr<Model::Device> &target, const Labels &labels)
    : m_description(description)
    , m_labels(labels)
    , m_descriptionControler(description)
    , m_targetControler(target)
    , m_pictures(package, *description, ICore::ExtractJsonPath())
{}

bool OnlineApply::sendSlots()
{
    QString errorText;
    if (m_targetControler.canMVEEnable() && !m_targetControler.enableMVR(m_description->getMVREnabled(), errorText)) {
        qWarning().noquote() << "enable(disable) MVR failed: " << errorText;
        return false;
    }
    if (!m_targetControler.copySlotDataToDevice(m_description)) {
        qWarning() << "set slot data failed.";
        return false;
    }
    return true;
}

LoadResultCode OnlineApply::sendPicture()
{
    const PictureReadAhead::Picture picture = m_pictures.next();
    if (picture.code != LoadSuccess || !picture.packaged.isOfGallery())
        return picture.code;

    const bool isLogo = picture.packaged.isLogo();
    ICore::setOperatorType(ICore::OperatorLoad,
                           (isLogo ? m_labels.logo : m_labels.background) + picture.packaged.materail()->getName());
    if (!m_targetControler.createMaterailFromImage(picture.image, isLogo ? Materail::Logo : Materail::Background,
                                                   QString(), 0, QSize(0, 0), picture.packaged.name()))
        return LoadApplyGalleryFailed;
    if (!picture.extractedPath.isEmpty() && !QFile::remove(picture.extractedPath))
        qDebug() << "Remove file failed:" << picture.extractedPath;
    return LoadSuccess;
}

bool OnlineApply::sendConfiguration()
{
    return m_descriptionControler.copyModelToDevice();
}

bool OnlineApply::sendMvrItems()
{
    return !m_description->getMVREnabled() || m_descriptionControler.copyMVRItemDataToDevice();
}

} // namespace Internal
} // namespace ProjectFileCfg
