// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "picturereadahead.h"

#include <host/devicecontrol.h>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// The steps of an apply to an online device, in their order. Each blocks until the device has answered; the job checks
/// for a cancellation in between. Use it only on the thread that created it.
class OnlineApply
{
public:
    /// What the progress text of a picture begins with, translated.
    struct Labels
    {
        QString strLogo;
        QString strBackground;
    };

    /// `description` is the package's device description, with the identity of `target`.
    OnlineApply(PackageReader &package, const std::shared_ptr<Model::Device> &description,
                const std::shared_ptr<Model::Device> &target);

    /// Switches MVR as the description says, if the device can switch it, and sends the slots. False, with a line in
    /// the log, if either fails.
    bool sendSlots();

    bool hasPicture() const { return m_pictures.hasNext(); }
    /// Sends the next picture, and names it to the host as progress. Also extracts it; the file is removed once it is
    /// sent, so it stays if it is outside the gallery or cannot be sent. LoadSuccess, the code of
    /// PictureReadAhead::Picture, or LoadApplyGalleryFailed.
    LoadResultCode sendPicture(const Labels &labels, QString *reason);

    bool sendConfiguration();

    /// Also true, without a call, if the description has MVR switched off.
    bool sendMvrItems();

private:
    const std::shared_ptr<Model::Device> m_pDescription;
    ModelControl::DeviceControler m_descriptionControler;
    ModelControl::DeviceControler m_targetControler;
    PictureReadAhead m_pictures;
};

} // namespace Internal
} // namespace ProjectFileCfg
