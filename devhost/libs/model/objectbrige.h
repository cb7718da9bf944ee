// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>

#include <QObject>

namespace Model {

/// Stands for the host's bridge between the model and the window (the host's spelling). User-interface thread only.
class HOST_MODEL_EXPORT object_brige : public QObject
{
    Q_OBJECT

public:
    static object_brige *instance();

    /// The active device; null if there is none.
    std::shared_ptr<Device> activeDevice() const;
    void setActiveDevice(const std::weak_ptr<Device> &device);

    /// Clears the selected screens; with `true` the active screen as well.
    void clearScreenList(bool withActived);
    void setActivedScreen(const std::shared_ptr<Screen> &screen);
    void appendSelectedScreen(const std::shared_ptr<Screen> &screen);
    std::shared_ptr<Screen> activedScreen() const { return m_activedScreen; }
    std::vector<std::shared_ptr<Screen>> selectedScreens() const { return m_selectedScreens; }

signals:
    /// The active device changed.
    void signal_deviceChanged();
    void signal_screensChanged();

private:
    object_brige() = default;

    std::weak_ptr<Device> m_activeDevice;
    std::shared_ptr<Screen> m_activedScreen;
    std::vector<std::shared_ptr<Screen>> m_selectedScreens;
};

} // namespace Model
