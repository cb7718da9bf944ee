// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "deviceselector.h"

#include "deviceoperations.h"
#include "hostcalls.h"
#include "plaintooltip.h"

#include <host/devices.h>

#include <QComboBox>
#include <QDebug>
#include <QEvent>
#include <QMetaMethod>
#include <QStandardItemModel>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int markRole = Qt::UserRole + 1;
constexpr int markCount = 4;
constexpr int markInfo = 0;
constexpr int markAddress = 3;
constexpr int widestInfo = 260; // pixels

QStringList markOf(const Model::Device &device)
{
    return {device.getDeviceInfo(), device.getTypeString(), device.getName(), device.getIPAddress()};
}

/// Does not disconnect destroyed(), on which the style sheet's cache of widgets relies.
void cutConnections(QWidget *widget)
{
    const QMetaMethod destroyed = QMetaMethod::fromSignal(&QObject::destroyed);
    const QMetaObject *meta = widget->metaObject();
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() == QMetaMethod::Signal && method.name() != destroyed.name())
            QObject::disconnect(widget, method, nullptr, QMetaMethod());
    }
}

/// Passes a widget's wheel events on to its parent.
class WheelPassedOn : public QObject
{
public:
    explicit WheelPassedOn(QWidget *widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel)
            return false;
        event->ignore();
        return true;
    }
};

} // namespace

DeviceSelector::DeviceSelector(QComboBox *combo)
    : m_pCombo(combo)
{
    // The open list is a separate window, and still scrolls.
    new WheelPassedOn(combo);
}

QString DeviceSelector::elidedInfo(const Model::Device &device) const
{
    return m_pCombo->fontMetrics().elidedText(device.getDeviceInfo(), Qt::ElideMiddle, widestInfo);
}

bool DeviceSelector::refill(QString &address)
{
    QString selection = m_pCombo->currentText();
    m_pCombo->clear();
    cutConnections(m_pCombo);

    const Model::DeviceList *devices = Model::DeviceList::instance();
    if (!devices) {
        qCritical() << "DeviceList::instance() is nullptr!!!";
        return false;
    }
    std::vector<std::shared_ptr<Model::Device>> listed;
    std::shared_ptr<Model::Device> active;
    if (!callHost("getDevices", [&] { listed = devices->getDevices(); }) || !DeviceOperations::findActive(active))
        return false;

    auto *model = new QStandardItemModel(m_pCombo);
    QString matchedAddress;
    for (const std::shared_ptr<Model::Device> &device : listed) {
        if (!device || !device->deviceConfig().supportProjectFile)
            continue;
        auto *item = new QStandardItem(elidedInfo(*device));
        item->setToolTip(asToolTip(device->getDeviceInfo()));
        item->setData(markOf(*device), markRole);
        if (device->getIPAddress() == address) {
            matchedAddress = device->getIPAddress();
            selection = item->text();
        }
        model->appendRow(item);
    }
    m_pCombo->setModel(model);

    if (active) {
        address = active->getIPAddress();
        selection = elidedInfo(*active);
    } else {
        address = matchedAddress;
    }
    m_pCombo->setCurrentText(selection);
    return true;
}

QStringList DeviceSelector::currentMark() const
{
    return m_pCombo->currentData(markRole).toStringList();
}

bool DeviceSelector::showCurrent()
{
    const QStringList mark = currentMark();
    if (mark.isEmpty())
        qCritical() << "parameter is empty!!!";
    else
        m_pCombo->setToolTip(asToolTip(mark.at(markInfo)));
    return mark.count() == markCount;
}

void DeviceSelector::changeDevice(QString &address)
{
    if (showCurrent()) {
        address = currentMark().at(markAddress);
    } else if (!currentMark().isEmpty()) {
        address.clear();
        qCritical() << "device mark list count error.";
    }
}

} // namespace Internal
} // namespace ProjectFileCfg
