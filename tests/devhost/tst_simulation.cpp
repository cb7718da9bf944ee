// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <simulation/faults.h>
#include <simulation/hardware.h>
#include <simulation/journal.h>
#include <simulation/network.h>
#include <simulation/operation.h>

#include <support/signalrecorder.h>
#include <support/testmain.h>
#include <support/warningguard.h>

#include <atomic>
#include <thread>

using namespace Simulation;

namespace {

const QString operation = Operations::queryMaterailData;
const QString otherOperation = Operations::enableMVR;

std::shared_ptr<Hardware> makeHardware()
{
    HardwareState state;
    state.identity.ip = QStringLiteral("10.0.0.1");
    state.identity.name = QStringLiteral("One");
    state.settings = QJsonObject{{QStringLiteral("brightness"), 80}};
    state.cards.append(CardState{1, 0, 201, QJsonObject{{QStringLiteral("edid"), QStringLiteral("x")}}});
    state.screens.append(ScreenState{1, QStringLiteral("Wall"), QRect(0, 0, 100, 50)});
    QImage pixels(8, 4, QImage::Format_ARGB32);
    pixels.fill(qRgba(1, 2, 3, 4));
    state.backgrounds.insert(0, PictureState{QStringLiteral("Blue"), pixels});
    state.logos.insert(5, PictureState{QStringLiteral("Badge"), pixels});
    state.presets.insert(300, PresetState{QStringLiteral("Opening"), QByteArray("abc", 3)});
    return std::make_shared<Hardware>(state);
}

} // namespace

class TstSimulation : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        Faults::instance()->clear();
        setPace(Pace());
        Journal::instance()->clear();
    }

    void the_journal_keeps_calls_in_order_with_their_arguments()
    {
        beginOperation(operation, {{QStringLiteral("keyNo"), 7}});
        beginOperation(otherOperation);
        QCOMPARE(Journal::instance()->operations(), QStringList({operation, otherOperation}));
        QCOMPARE(Journal::instance()->entries().first().arguments.value(QStringLiteral("keyNo")).toInt(), 7);
        QCOMPARE(Journal::instance()->count(operation), 1);
        Journal::instance()->clear();
        QVERIFY(Journal::instance()->entries().isEmpty());
    }

    void the_journal_tells_threads_apart()
    {
        beginOperation(operation);
        std::thread worker([] { beginOperation(operation); });
        worker.join();
        const QVector<JournalEntry> entries = Journal::instance()->entries();
        QCOMPARE(entries.size(), 2);
        QVERIFY(entries.at(0).onMainThread);
        QVERIFY(!entries.at(1).onMainThread);
        QVERIFY(entries.at(0).threadId != entries.at(1).threadId);
    }

    void the_journal_announces_each_call()
    {
        TestSupport::SignalRecorder<Simulation::JournalEntry> recorded(Journal::instance(), &Journal::recorded);
        std::thread worker([] { beginOperation(operation); });
        worker.join();
        QTRY_COMPARE(recorded.count(), 1);
        QCOMPARE(recorded.values().first().operation, operation);
    }

    void a_fault_strikes_at_its_call_only_and_is_spent()
    {
        Faults::instance()->arm(operation, Fault::fail(3));
        QVector<Outcome> outcomes;
        for (int i = 0; i < 4; ++i) {
            beginOperation(otherOperation);
            outcomes.append(beginOperation(operation));
        }
        QCOMPARE(outcomes, QVector<Outcome>({Outcome::Done, Outcome::Done, Outcome::Failed, Outcome::Done}));
        QCOMPARE(Faults::instance()->armedCount(), 0);
    }

    void a_fault_counts_from_when_it_was_armed()
    {
        beginOperation(operation);
        Faults::instance()->arm(operation, Fault::fail(1));
        QCOMPARE(beginOperation(operation), Outcome::Failed);
    }

    void a_fault_can_strike_at_every_call()
    {
        Faults::instance()->arm(operation, Fault::cancel(Fault::everyCall));
        QCOMPARE(beginOperation(operation), Outcome::Cancelled);
        QCOMPARE(beginOperation(operation), Outcome::Cancelled);
        Faults::instance()->clear();
        QCOMPARE(beginOperation(operation), Outcome::Done);
    }

    void a_call_can_end_with_an_exception()
    {
        Faults::instance()->arm(operation, Fault::throwing(2));
        QCOMPARE(beginOperation(operation), Outcome::Done);
        QVERIFY_EXCEPTION_THROWN(beginOperation(operation), std::runtime_error);
        QCOMPARE(Journal::instance()->count(operation), 2);
        QCOMPARE(beginOperation(operation), Outcome::Done);
    }

    void a_failing_call_is_in_the_journal()
    {
        Faults::instance()->arm(operation, Fault::fail());
        beginOperation(operation);
        QCOMPARE(Journal::instance()->operations(), QStringList(operation));
    }

    void a_dropped_connection_stays_down()
    {
        const auto hardware = makeHardware();
        Faults::instance()->arm(operation, Fault::disconnect());
        QCOMPARE(beginOperation(operation, {}, hardware), Outcome::Disconnected);
        QVERIFY(!hardware->isReachable());
        QCOMPARE(beginOperation(otherOperation, {}, hardware), Outcome::Disconnected);
        hardware->setReachable(true);
        QCOMPARE(beginOperation(otherOperation, {}, hardware), Outcome::Done);
    }

    void an_operation_without_its_device_is_disconnected()
    {
        QCOMPARE(beginOperation(operation, {}, std::shared_ptr<Hardware>()), Outcome::Disconnected);
    }

    void an_action_runs_on_the_calling_thread_before_the_operation_goes_on()
    {
        std::thread::id actionThread;
        int journalSize = 0;
        Faults::instance()->arm(operation, Fault::run([&] {
                                    actionThread = std::this_thread::get_id();
                                    journalSize = Journal::instance()->entries().size();
                                }));
        std::thread::id workerThread;
        Outcome outcome = Outcome::Failed;
        std::thread worker([&] {
            workerThread = std::this_thread::get_id();
            outcome = beginOperation(operation);
        });
        worker.join();
        QVERIFY(actionThread == workerThread);
        QCOMPARE(journalSize, 1);
        QCOMPARE(outcome, Outcome::Done);
    }

    void cancelling_inside_an_operation_ends_that_operation_alone()
    {
        Faults::instance()->arm(operation, Fault::run([] { cancelRunningOperations(); }));
        QCOMPARE(beginOperation(operation), Outcome::Cancelled);
        QCOMPARE(beginOperation(operation), Outcome::Done);
    }

    void cancelling_wakes_an_operation_that_waits()
    {
        // Long enough to tell whether the wait was interrupted.
        Faults::instance()->arm(operation, Fault::late(20 * 1000));
        std::atomic<bool> done{false};
        Outcome outcome = Outcome::Done;
        std::thread worker([&] {
            outcome = beginOperation(operation);
            done = true;
        });
        QTRY_COMPARE(Journal::instance()->count(operation), 1);
        while (!done) {
            cancelRunningOperations();
            std::this_thread::yield();
        }
        worker.join();
        QCOMPARE(outcome, Outcome::Cancelled);
    }

    void cancelling_at_one_device_leaves_the_others()
    {
        const auto hardware = makeHardware();
        Faults::instance()->arm(operation, Fault::run([] { cancelRunningOperations(QStringLiteral("10.0.0.2")); }));
        QCOMPARE(beginOperation(operation, {}, hardware), Outcome::Done);
        Faults::instance()->arm(operation, Fault::run([] { cancelRunningOperations(QStringLiteral("10.0.0.1")); }));
        QCOMPARE(beginOperation(operation, {}, hardware), Outcome::Cancelled);
    }

    void a_device_that_is_unplugged_during_an_operation_fails_it()
    {
        const auto hardware = makeHardware();
        Faults::instance()->arm(operation, Fault::run([hardware] { hardware->setReachable(false); }));
        QCOMPARE(beginOperation(operation, {}, hardware), Outcome::Disconnected);
    }

    void durations_and_throughput_make_operations_wait()
    {
        Pace slow;
        slow.durations.insert(operation, 20);
        slow.throughput = 1000;
        setPace(slow);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(beginOperation(operation, {}, makeHardware(), 30), Outcome::Done);
        // A busy machine makes waits longer, never shorter.
        QVERIFY(timer.elapsed() >= 50);
    }

    void a_misspelt_operation_is_reported()
    {
        TestSupport::ExpectMessage expected(QtWarningMsg, QRegularExpression(QStringLiteral("MaterialControl.query$")),
                                            1);
        Faults::instance()->arm(QStringLiteral("MaterialControl.query"), Fault::fail());
    }

    void every_operation_name_is_unique()
    {
        const QStringList names = Operations::all();
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), names.size());
    }

    void hardware_compares_pixel_by_pixel_and_byte_by_byte()
    {
        const auto hardware = makeHardware();
        const HardwareState before = hardware->state();
        QVERIFY(hardware->state() == before);
        hardware->change([](HardwareState &state) { state.logos[5].pixels.setPixel(7, 3, qRgba(1, 2, 3, 5)); });
        QCOMPARE(before.differencesTo(hardware->state()), QStringList(QStringLiteral("logo 5 differs")));
        hardware->setState(before);
        hardware->change([](HardwareState &state) { state.presets[300].bytes[2] = 'd'; });
        QCOMPARE(before.differencesTo(hardware->state()), QStringList(QStringLiteral("preset 300 differs")));
        hardware->setState(before);
        hardware->change([](HardwareState &state) { state.backgrounds.remove(0); });
        QCOMPARE(before.differencesTo(hardware->state()), QStringList(QStringLiteral("background 0 is missing")));
        QCOMPARE(hardware->state().differencesTo(before), QStringList(QStringLiteral("background 0 is new")));
        hardware->setState(before);
        QVERIFY(hardware->state() == before);
    }

    void every_part_of_the_hardware_counts_in_a_comparison_data()
    {
        QTest::addColumn<QString>("difference");
        for (const char *part : {"identity", "protocol number", "multi-viewer capability", "multi-viewer",
                                 "multi-viewer items", "cards", "screens", "settings", "capacity"})
            QTest::newRow(part) << QStringLiteral("%1 differs").arg(QLatin1String(part));
    }

    void every_part_of_the_hardware_counts_in_a_comparison()
    {
        QFETCH(QString, difference);
        const HardwareState before = makeHardware()->state();
        const QVector<std::function<void(HardwareState &)>> changes{
            [](HardwareState &s) { s.identity.sn = QStringLiteral("2"); },
            [](HardwareState &s) { s.protocolNumber = 0.1; },
            [](HardwareState &s) { s.mvrCapable = false; },
            [](HardwareState &s) { s.mvrEnabled = true; },
            [](HardwareState &s) { s.mvrItems.append(1); },
            [](HardwareState &s) { s.cards[0].settings = QJsonObject(); },
            [](HardwareState &s) { s.screens[0].geometry.moveLeft(1); },
            [](HardwareState &s) { s.settings.insert(QStringLiteral("brightness"), 81); },
            [](HardwareState &s) { s.capacity = 1; }};
        int found = 0;
        for (const auto &change : changes) {
            HardwareState after = before;
            change(after);
            found += before.differencesTo(after) == QStringList(difference);
        }
        QCOMPARE(found, 1);
    }

    void pictures_are_kept_in_the_formats_of_the_hardware()
    {
        const HardwareState state = makeHardware()->state();
        QCOMPARE(state.backgrounds[0].pixels.format(), QImage::Format_RGB32);
        QCOMPARE(state.logos[5].pixels.format(), QImage::Format_ARGB32);
    }

    void a_factory_reset_leaves_identity_and_cards()
    {
        const HardwareState before = makeHardware()->state();
        const HardwareState after = before.afterFactoryReset();
        QCOMPARE(after.identity.ip, before.identity.ip);
        QCOMPARE(after.cards.size(), before.cards.size());
        QVERIFY(after.cards[0].settings.isEmpty());
        QVERIFY(after.screens.isEmpty() && after.settings.isEmpty() && after.backgrounds.isEmpty() &&
                after.logos.isEmpty() && after.presets.isEmpty() && !after.mvrEnabled);
    }

    void the_configuration_of_two_devices_can_be_equal()
    {
        HardwareState one = makeHardware()->state();
        HardwareState other = one;
        other.identity.ip = QStringLiteral("10.0.0.2");
        other.protocolNumber = 9;
        other.capacity = 5;
        other.cards.first().type += 1;
        other.cards.first().modelId += 1;
        QVERIFY(one != other);
        QVERIFY(one.configuration() == other.configuration());
    }

    void counters_follow_the_pictures_until_they_are_fixed()
    {
        const auto hardware = makeHardware();
        QCOMPARE(hardware->logoBytes(), quint64(8 * 4 * 4));
        QCOMPARE(hardware->otherBytes(), quint64(8 * 4 * 4 + 3));
        hardware->fixCounters(1000, 24);
        QCOMPARE(hardware->logoBytes() + hardware->otherBytes(), quint64(1024));
        hardware->releaseCounters();
        QCOMPARE(hardware->logoBytes(), quint64(8 * 4 * 4));
    }

    void the_network_knows_devices_by_address()
    {
        const auto hardware = makeHardware();
        Network::instance()->attach(hardware);
        QCOMPARE(Network::instance()->hardware(QStringLiteral("10.0.0.1")), hardware);
        Network::instance()->detach(QStringLiteral("10.0.0.1"));
        QVERIFY(!Network::instance()->hardware(QStringLiteral("10.0.0.1")));
    }

    void a_change_is_seen_whole_from_other_threads()
    {
        const auto hardware = makeHardware();
        std::atomic<bool> stop{false};
        std::thread writer([&] {
            for (int i = 0; i < 2000; ++i)
                hardware->change([i](HardwareState &state) {
                    state.identity.name = QString::number(i);
                    state.screens[0].name = QString::number(i);
                });
            stop = true;
        });
        hardware->change([](HardwareState &state) { state.screens[0].name = state.identity.name; });
        bool torn = false;
        while (!stop) {
            const HardwareState state = hardware->state();
            torn = torn || state.identity.name != state.screens[0].name;
        }
        writer.join();
        QVERIFY(!torn);
    }

    void journal_and_faults_bear_many_threads()
    {
        constexpr int threads = 8;
        constexpr int calls = 200;
        Faults::instance()->arm(operation, Fault::fail(threads * calls / 2));
        std::atomic<int> failures{0};
        std::vector<std::thread> workers;
        for (int i = 0; i < threads; ++i)
            workers.emplace_back([&failures] {
                for (int call = 0; call < calls; ++call) {
                    if (beginOperation(operation) == Outcome::Failed)
                        ++failures;
                }
            });
        for (std::thread &worker : workers)
            worker.join();
        QCOMPARE(failures.load(), 1);
        QCOMPARE(Journal::instance()->count(operation), threads * calls);
    }
};

TEST_MAIN_CORE(TstSimulation)
#include "tst_simulation.moc"
