// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>
#include <modelcontrol/modelcontrol_global.h>

#include <QImage>

#include <any>
#include <map>
#include <memory>
#include <vector>

namespace ModelControl {

/// Stands for the host's control of one device (the host's spelling).
///
/// Operations block until the hardware has answered and may be called from any thread. The hardware is the one at the
/// device's IP address. Operations that can fail return false.
class HOST_MODELCONTROL_EXPORT DeviceControler
{
public:
    explicit DeviceControler(const std::shared_ptr<Model::Device> &device);

    /// Bytes used by the device's pictures of that type, except the one named by `replaced` (an empty reference
    /// excludes none). With `wholeGallery` unused pictures count too.
    quint64 calLogoMaterailCapacity(const Talvik::weak_refrence<Model::Materail> &replaced, int materailType,
                                    bool wholeGallery = true) const;
    /// Bytes in use on the device apart from those of calLogoMaterailCapacity.
    quint64 usedCapacity() const;

    /// Changes settings of the device, or resets it.
    bool updateDeviceInfo(const std::map<Model::Device::ParameterType, std::any> &parameters);
    /// Reserves the channel to the hardware for one task, or releases it.
    void setChannelExclusive(bool exclusive);
    /// Asks the hardware to abort the operation identified by those bytes.
    void cancelOperator(const std::vector<unsigned char> &command);
    /// Asks the running task to end early; that task then fails.
    static void cancelCurrentTask();

    /// True if the device can switch its multi-viewer on and off (the host's spelling).
    bool canMVEEnable() const;
    bool enableMVR(bool enable, QString &errorText);
    /// Sends the slot settings of `source` to this device.
    bool copySlotDataToDevice(const std::shared_ptr<Model::Device> &source);
    bool copyMVRItemDataToDevice();
    /// Sends the whole model to the hardware: settings, screens, presets, and names and numbers of pictures.
    bool copyModelToDevice();
    /// Sends a picture to the hardware's gallery under that name. `kind` is Materail::MaterailType.
    bool createMaterailFromImage(const QImage &image, int kind, const QString &text, int flags, const QSize &size,
                                 const QString &name);

private:
    const std::shared_ptr<Model::Device> m_device;
};

} // namespace ModelControl
