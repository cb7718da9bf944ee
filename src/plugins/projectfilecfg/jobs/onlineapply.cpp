// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "onlineapply.h"

#include "reason.h"

#include <host/core.h>
#include <host/devices.h>

#include <QDebug>
#include <QFile>

using Core::ICore;

namespace ProjectFileCfg {
namespace Internal {

OnlineApply::OnlineApply(PackageReader &package, const std::shared_ptr<Model::Device> &description,
                         const std::shared_ptr<Model::Device> &target)
    : m_pDescription(description)
    , m_descriptionControler(description)
    , m_targetControler(target)
    , m_pictures(package, *description, ICore::ExtractJsonPath())
{}

bool OnlineApply::sendSlots()
{
    QString errorText;
    if (m_targetControler.canMVEEnable() && !m_targetControler.enableMVR(m_pDescription->getMVREnabled(), errorText)) {
        qWarning().noquote() << "enable(disable) MVR failed: " << errorText;
        return false;
    }
    if (!m_targetControler.copySlotDataToDevice(m_pDescription)) {
        qWarning() << "set slot data failed.";
        return false;
    }
    return true;
}

LoadResultCode OnlineApply::sendPicture(const Labels &labels, QString *reason)
{
    const PictureReadAhead::Picture picture = m_pictures.next();
    if (picture.code != LoadSuccess)
        failBecause(reason, picture.strReason);
    if (picture.code != LoadSuccess || !picture.packaged.isOfGallery())
        return picture.code;

    const bool isLogo = picture.packaged.isLogo();
    ICore::setOperatorType(HostNumbers::operatorLoad,
                           (isLogo ? labels.strLogo : labels.strBackground) + picture.packaged.materail()->getName());
    if (!m_targetControler.createMaterailFromImage(picture.image, isLogo ? HostNumbers::logo : HostNumbers::background,
                                                   QString(), 0, QSize(0, 0), picture.packaged.name())) {
        failBecause(reason, QStringLiteral("the device did not accept the picture %1").arg(picture.packaged.entry()));
        return LoadApplyGalleryFailed;
    }
    if (!picture.strExtractedPath.isEmpty() && !QFile::remove(picture.strExtractedPath))
        qDebug() << "Remove file failed:" << picture.strExtractedPath;
    return LoadSuccess;
}

bool OnlineApply::sendConfiguration()
{
    return m_descriptionControler.copyModelToDevice();
}

bool OnlineApply::sendMvrItems()
{
    return !m_pDescription->getMVREnabled() || m_descriptionControler.copyMVRItemDataToDevice();
}

} // namespace Internal
} // namespace ProjectFileCfg
