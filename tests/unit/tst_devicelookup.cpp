// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicelookup.h"

#include <support/customsite.h>
#include <support/testmain.h>

#include <model/devicelist.h>

using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

/// How the product finds a device of the host.
class TstDeviceLookup : public QObject
{
    Q_OBJECT

private slots:
    void without_a_list_no_device_is_found();
    void a_device_is_found_by_its_address();
};

void TstDeviceLookup::without_a_list_no_device_is_found()
{
    QVERIFY(!Model::DeviceList::instance());
    QVERIFY(!findDeviceByAddress(QStringLiteral("10.0.0.11")));
}

void TstDeviceLookup::a_device_is_found_by_its_address()
{
    const CustomSite site(
        {{plainDevice(QStringLiteral("10.0.0.11")), true}, {plainDevice(QStringLiteral("10.0.0.12")), false}});
    const auto device = findDeviceByAddress(QStringLiteral("10.0.0.12"));
    QVERIFY(device);
    QCOMPARE(device->getIPAddress(), QStringLiteral("10.0.0.12"));
    QVERIFY(!findDeviceByAddress(QStringLiteral("10.0.0.13")));
}

TEST_MAIN(TstDeviceLookup)
#include "tst_devicelookup.moc"
