// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "sitedock.h"

#include <simulation/faults.h>
#include <simulation/journal.h>
#include <simulation/session/session.h>

#include <support/answerbook.h>
#include <support/testmain.h>

#include <QAccessible>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTreeWidget>

using namespace Simulation;

class TstSiteDock : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::unique_ptr<Session> m_session;
    std::unique_ptr<SiteDock> m_dock;

    template<typename T>
    T *find(const char *name) const
    {
        return m_dock->findChild<T *>(QLatin1String(name));
    }

private slots:
    void init()
    {
        QString error;
        m_session = std::make_unique<Session>(Site::fromFile(builtInSite(QStringLiteral("small")), error).value(),
                                              m_directory.path());
        m_dock = std::make_unique<SiteDock>(*m_session);
        m_dock->show();
    }

    void cleanup()
    {
        m_dock.reset();
        m_session.reset();
    }

    void the_dock_lists_the_devices_with_their_state()
    {
        auto *devices = find<QTreeWidget>("siteDevices");
        QCOMPARE(devices->topLevelItemCount(), 5);
        QCOMPARE(devices->topLevelItem(0)->text(0), QStringLiteral("Main hall"));
        QCOMPARE(devices->topLevelItem(0)->text(2), QStringLiteral("plugged in"));
        QCOMPARE(devices->topLevelItem(3)->text(2), QStringLiteral("unplugged"));
    }

    void a_device_can_be_unplugged_and_plugged_in()
    {
        auto *button = find<QPushButton>("sitePlug");
        const QString ip = QStringLiteral("192.168.1.11");
        QVERIFY(TestSupport::click(button));
        QVERIFY(!m_session->device(ip)->getDeviceOnlineFlag());
        QCOMPARE(find<QTreeWidget>("siteDevices")->topLevelItem(0)->text(2), QStringLiteral("unplugged"));
        QVERIFY(TestSupport::click(button));
        QVERIFY(m_session->device(ip)->getDeviceOnlineFlag());
    }

    void an_armed_fault_strikes()
    {
        find<QComboBox>("siteOperation")->setCurrentText(Operations::serailize);
        find<QComboBox>("siteFault")->setCurrentIndex(find<QComboBox>("siteFault")->findData(int(Fault::Kind::Cancel)));
        find<QSpinBox>("siteCall")->setValue(2);
        QVERIFY(TestSupport::click(find<QPushButton>("siteArm")));
        QCOMPARE(Faults::instance()->armedCount(), 1);
        QCOMPARE(beginOperation(Operations::serailize), Outcome::Done);
        QCOMPARE(beginOperation(Operations::serailize), Outcome::Cancelled);
    }

    void armed_faults_can_be_cleared()
    {
        QVERIFY(!find<QPushButton>("siteClear")->isEnabled());
        QVERIFY(TestSupport::click(find<QPushButton>("siteArm")));
        QVERIFY(TestSupport::click(find<QPushButton>("siteClear")));
        QCOMPARE(Faults::instance()->armedCount(), 0);
        QVERIFY(!find<QPushButton>("siteClear")->isEnabled());
    }

    void the_dock_shows_the_pictures_that_the_hardware_holds()
    {
        auto *pictures = find<QListWidget>("sitePictures");
        const auto hardware = m_session->hardware(QStringLiteral("192.168.1.11"));
        QCOMPARE(pictures->count(), hardware->state().backgrounds.size() + hardware->state().logos.size());
        QCOMPARE(pictures->item(0)->text(), QStringLiteral("Opening beams"));
        hardware->change([](HardwareState &state) { state.backgrounds[0].name = QStringLiteral("Renamed"); });
        QTRY_COMPARE(pictures->item(0)->text(), QStringLiteral("Renamed"));
        find<QTreeWidget>("siteDevices")->setCurrentItem(find<QTreeWidget>("siteDevices")->topLevelItem(4));
        QCOMPARE(pictures->count(), 0);
    }

    void each_control_has_a_name_of_its_own()
    {
        QStringList names;
        for (const QWidget *control : m_dock->findChildren<QWidget *>()) {
            if (!control->objectName().startsWith(QLatin1String("site")) || control->focusPolicy() == Qt::NoFocus)
                continue;
            const QString name =
                QAccessible::queryAccessibleInterface(const_cast<QWidget *>(control))->text(QAccessible::Name);
            QVERIFY2(!name.isEmpty(), qPrintable(control->objectName()));
            QVERIFY2(!names.contains(name), qPrintable(name));
            names.append(name);
        }
        QCOMPARE(names.size(), 8);
    }
};

TEST_MAIN(TstSiteDock)
#include "tst_sitedock.moc"
