#include "device/monitor/ec_dirver_reader.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <QCoreApplication>

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using tarnTest::notification;
using tarnTest::queuedMessages;
using tarnTest::QueueMark;

namespace {

// With nothing attached the first cycle holds the EC from 690 to 810 ms, the second from 1010 ms on.
constexpr auto betweenCycles = 850ms;
constexpr auto beforeSecondLock = 950ms;

} // namespace

// The loop runs on the test's own thread; the plan on the virtual clock ends it.
class MonitorLoop : public tarnTest::MachineTest
{
protected:
    MonitorLoop()
    {
        EcDirverControllerHal::instance();
        reader = EcDirverReader::instance();
        machine.log.clear();
    }

    void runUntil(std::chrono::milliseconds end)
    {
        machine.clock.at(end, [this] { reader->requestEnd(); });
        reader->run();
    }

    EcDirverReader *reader;
};

TEST_F(MonitorLoop, GoesFromDetectionThroughSettlingToPolling)
{
    runUntil(1300ms);
    const QStringList lines = machine.log.lines();
    EXPECT_TRUE(lines.at(0).startsWith("EcDirverReaderRun() ThreadId()-------: "));
    EXPECT_EQ(lines.at(1), "mcuLinkModel is  0");
    EXPECT_EQ(lines.at(2), "getAccessoryTypeForFirst Enter |");
    EXPECT_EQ(lines.count("getAccessoryTypeForFirst Enter |"), 1);
    const auto settled = lines.indexOf("getAccessoryTypeForFirst finish normal.");
    ASSERT_GT(settled, 0);
    EXPECT_EQ(lines.at(settled - 1), "getAccessoryTypeForFirst Leave |");
    EXPECT_EQ(lines.mid(settled + 1, 2),
        QStringList({"EcPowerModeManager object is created.", "Begin to get smart charge status."}));

    // Detection 60 ms, pause 100, settling 300, then the EEPROM (130 ms), then cycles of 300 ms and a read.
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 R 0570 01", "40 R 050F 50", "60 R 06A0 00", "480 W 0642 33", "500 W 0643 00",
            "520 W 0644 01", "540 W 0641 01", "570 R 0640 01", "590 R 0620 50", "710 R 06A0 00",
            "1030 R 06A0 00"}));
}

TEST_F(MonitorLoop, RepeatsTheFirstDetectionUntilTheEcAnswers)
{
    machine.faults().switchOn(tarnSimulator::Fault::NoAnswer);
    // Three unanswered reads of 5520 ms each, and 100 ms between two attempts.
    constexpr auto attempt = 3 * 5520ms + 100ms;
    runUntil(3 * attempt - 1ms);
    EXPECT_EQ(machine.log.count("getAccessoryTypeForFirst Enter |"), 3);
    EXPECT_EQ(machine.log.count("getAccessoryTypeForFirst finish normal."), 0);
    EXPECT_EQ(machine.log.count("Begin to get smart charge status."), 0);
    // No read succeeds, so each notification holds the fallback value.
    EXPECT_EQ(queuedMessages().mid(0, 2),
        QStringList({notification("getTarnChargingStatus", "0"), notification("getTarnBatteryNum", "255")}));
}

TEST_F(MonitorLoop, GoesOnWhenTheEcComesAlive)
{
    machine.faults().switchOn(tarnSimulator::Fault::NoAnswer);
    machine.clock.at(20s, [this] { machine.faults().clear(); });
    runUntil(60s);
    EXPECT_EQ(machine.log.count("getAccessoryTypeForFirst finish normal."), 1);
    EXPECT_GT(machine.traffic().count("R 06A0 00"), 10);
}

TEST_F(MonitorLoop, LeavesTheFirstDetectionOutWhenTheEcHasAnsweredBefore)
{
    quint8 level = 0;
    ASSERT_EQ(EcDirverControllerHal::instance()->readXdata(EC_TARN_BATTERY_NUM, &level), 0);
    machine.traffic();
    runUntil(2s);
    EXPECT_EQ(machine.log.count("getAccessoryTypeForFirst Enter |"), 0);
    EXPECT_EQ(machine.log.count("getAccessoryTypeForFirst finish normal."), 1);
    EXPECT_TRUE(queuedMessages().isEmpty());
    EXPECT_EQ(machine.traffic().first(), "W 0642 33");
}

// Events posted to its thread are handled during the two pauses before the polling.
TEST_F(MonitorLoop, HandlesEventsInThePausesBeforeThePolling)
{
    QObject onThisThread;
    std::vector<std::chrono::milliseconds> handled;
    const auto post = [this, &onThisThread, &handled] {
        QMetaObject::invokeMethod(
            &onThisThread, [this, &handled] { handled.push_back(machine.clock.now()); },
            Qt::QueuedConnection);
    };
    machine.clock.at(30ms, post); // during the detection
    machine.clock.at(110ms, post); // during the pause of 100 ms
    runUntil(1s);
    EXPECT_EQ(handled, (std::vector<std::chrono::milliseconds> {60ms, 160ms}));
}

TEST_F(MonitorLoop, ReportsAttachAndDetachWhileItRuns)
{
    machine.clock.at(2s, [this] { machine.attach(ACCESSORY_DOCK); });
    machine.clock.at(4s, [this] { machine.computer.detach(); });
    runUntil(6s);
    EXPECT_EQ(queuedMessages().filter("changeAccessoryType"),
        QStringList({notification("changeAccessoryType", "dock"),
            notification("changeAccessoryType", "disconnected")}));
}

TEST_F(MonitorLoop, AnnouncesAKVaneValueOnlyWhenItChanges)
{
    machine.attach(ACCESSORY_KVANE);
    machine.clock.at(5s, [this] { machine.state->xdata[EC_KVANE_BATTERY_NUM] = 42; });
    machine.clock.at(8s, [this] { machine.state->xdata[EC_TARN_CHARGING_STATUS] = 0; });
    machine.clock.at(10s, [this] { machine.state->accessory.kvaneLed = 9; });
    std::unique_ptr<QueueMark> mark;
    machine.clock.at(4s, [&mark] { mark = std::make_unique<QueueMark>(); });
    runUntil(15s);
    EXPECT_EQ(mark->added(),
        QStringList({notification("getKvaneBatteryNum", "42"), notification("getTarnChargingStatus", "0"),
            notification("getKVaneLedLight", "9")}));
    EXPECT_EQ(reader->sentKvaneBatteryNum(), 42);
}

TEST_F(MonitorLoop, ReadsTheKVaneValuesInTheirOrderInEveryCycle)
{
    machine.attach(ACCESSORY_KVANE);
    machine.state->xdata[EC_KVANE_BATTERY_NUM] = 0x42;
    machine.state->xdata[EC_TARN_BATTERY_NUM] = 0x4D;
    machine.clock.at(3s, [this] { machine.traffic(); });
    runUntil(5s);
    const QStringList traffic = machine.traffic();
    const auto start = traffic.indexOf("R 06A0 04");
    QStringList registers;
    for (const QString &access : traffic.mid(start, 8))
        registers << access.section(' ', 0, 1); // without the value
    EXPECT_EQ(registers,
        QStringList({"R 06A0", "R 06A6", "W 04B0", "R 04B1", "R 06CC", "R 06CD", "R 0570", "R 050F"}));
}

TEST_F(MonitorLoop, FetchesAndClearsTheEventsOfAGraphicsBox)
{
    machine.attach(ACCESSORY_GRAPHICS);
    runUntil(15s);
    const QStringList traffic = machine.traffic();
    const auto at = traffic.indexOf("R 04A4 00");
    ASSERT_GT(at, 0);
    EXPECT_EQ(traffic.at(at - 1), "R 06A6 02");
    EXPECT_EQ(traffic.at(at + 1), "W 04A4 00");
}

struct AfterTheBox
{
    const char *name;
    int code; // 0: nothing
};

class MonitorLoopAfterABox : public MonitorLoop, public ::testing::WithParamInterface<AfterTheBox>
{ };

INSTANTIATE_TEST_SUITE_P(Changes, MonitorLoopAfterABox,
    ::testing::Values(AfterTheBox {"disconnected", ACCESSORY_NONE}, AfterTheBox {"dock", ACCESSORY_DOCK},
        AfterTheBox {"k_vane", ACCESSORY_KVANE}));

TEST_P(MonitorLoopAfterABox, FetchesNoMoreEvents)
{
    machine.attach(ACCESSORY_GRAPHICS);
    QStringList withBox;
    machine.clock.at(20s, [&] {
        withBox = machine.traffic();
        if (GetParam().code == ACCESSORY_NONE)
            machine.computer.detach();
        else
            machine.attach(static_cast<quint8>(GetParam().code));
    });
    machine.clock.at(22s, [this] { machine.traffic(); }); // the cycle of the change may still have fetched
    runUntil(25s);
    EXPECT_EQ(queuedMessages().filter("changeAccessoryType"),
        QStringList({notification("changeAccessoryType", GetParam().name)}));
    EXPECT_FALSE(withBox.filter("04A4").isEmpty());
    const QStringList without = machine.traffic();
    EXPECT_FALSE(without.filter("06A0").isEmpty());
    EXPECT_TRUE(without.filter("04A4").isEmpty());
}

// Only a known accessory that replaces the box ends that.
TEST_F(MonitorLoop, GoesOnFetchingEventsWhenAnUnknownAccessoryFollowsABox)
{
    machine.attach(ACCESSORY_GRAPHICS);
    constexpr std::uint8_t unknownCode = 77;
    machine.clock.at(20s, [this] { machine.computer.attach(tarnSimulator::unknownAccessory(unknownCode)); });
    machine.clock.at(22s, [this] { machine.traffic(); });
    runUntil(25s);
    EXPECT_EQ(reader->accessoryKind(), unknownCode);
    const QStringList traffic = machine.traffic();
    const auto at = traffic.indexOf("R 06A6 4D");
    ASSERT_GE(at, 0);
    EXPECT_EQ(traffic.mid(at + 1, 2), QStringList({"R 04A4 00", "W 04A4 00"}));
}

TEST_F(MonitorLoop, HoldsTheEcThroughoutTheWorkOfACycle)
{
    machine.attach(ACCESSORY_GRAPHICS);
    struct Wait
    {
        int length;
        bool withEc;
        bool operator==(const Wait &) const = default;
    };
    std::vector<Wait> waits;
    machine.clock.at(20s, [&] {
        machine.clock.onWait = [&waits](std::chrono::milliseconds duration) {
            waits.push_back({static_cast<int>(duration.count()), ecAccessMutex.isLocked()});
        };
    });
    runUntil(22s);
    machine.clock.onWait = nullptr;
    // From one pause between two cycles to the next.
    const std::vector<Wait> pauses(2, {100, false});
    const auto first = std::search(waits.begin(), waits.end(), pauses.begin(), pauses.end());
    ASSERT_NE(first, waits.end());
    const auto second = std::search(first + 2, waits.end(), pauses.begin(), pauses.end());
    ASSERT_NE(second, waits.end());
    EXPECT_TRUE(std::all_of(first + 2, second, [](const Wait &wait) { return wait.withEc; }));
    EXPECT_EQ(std::count(first + 2, second, Wait {100, true}), 1);
    EXPECT_GE(second - first, 2 + 4 * 4); // four registers: link, code, the event and its clearing
}

TEST_F(MonitorLoop, DoesNoEcWorkDuringAnUpdateHold)
{
    machine.clock.at(betweenCycles, [this] {
        reader->setEcUpdating(true);
        machine.traffic();
    });
    runUntil(6s);
    EXPECT_TRUE(reader->isEcUpdating());
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_TRUE(ecAccessMutex.isLocked());
    // A paused cycle is a wait of 100 ms and nothing else.
    const auto waits = machine.clock.waits();
    EXPECT_TRUE(std::all_of(waits.end() - 25, waits.end(), [](int wait) { return wait == 100; }));
}

TEST_F(MonitorLoop, TestsTheHoldAgainOnceItHasTheLock)
{
    machine.clock.at(beforeSecondLock, [this] {
        machine.traffic();
        reader->setEcUpdating(true);
        ecAccessMutex.unlock(); // as if the hold had been raised while the loop waited for the lock
    });
    runUntil(3s);
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST(UpdateHold, ASecondCallDoesNotWaitForTheFirst)
{
    auto *reader = EcDirverReader::instance();
    reader->setEcUpdating(true);
    EXPECT_TRUE(reader->isEcUpdating());
    EXPECT_TRUE(ecAccessMutex.isLocked());
    reader->setEcUpdating(true);
    EXPECT_TRUE(reader->isEcUpdating());
    // Clearing leaves the EC locked: only a restart brings its traffic back.
    reader->setEcUpdating(false);
    EXPECT_FALSE(reader->isEcUpdating());
    EXPECT_TRUE(ecAccessMutex.isLocked());
}

TEST(UpdateHold, AClearingCallLocksAsWell)
{
    auto *reader = EcDirverReader::instance();
    reader->setEcUpdating(false);
    EXPECT_FALSE(reader->isEcUpdating());
    EXPECT_TRUE(ecAccessMutex.isLocked());
}

TEST(UpdateHold, IsNotInForceWhenTheProcessIsEnding)
{
    ecAccessMutex.releaseWaiters();
    EcDirverReader::instance()->setEcUpdating(true);
    EXPECT_FALSE(EcDirverReader::instance()->isEcUpdating());
}

TEST_F(MonitorLoop, SurvivesADeferredDeleteWhileItsThreadRuns)
{
    reader->start();
    reader->deleteLater();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(machine.log.contains("EcDirverReader object is kill!"));
    EXPECT_TRUE(reader->wait(QDeadlineTimer(10s)));
    delete reader;
    EXPECT_EQ(machine.log.count("EcDirverReader object is kill!"), 1);
}

TEST_F(MonitorLoop, EndsAtItsNextLockWhenTheProcessEnds)
{
    machine.clock.at(1s, [this] {
        ecAccessMutex.releaseWaiters();
        machine.traffic();
    });
    runUntil(2s);
    EXPECT_LE(machine.traffic().size(), 1); // the access that was under way
}

TEST_F(MonitorLoop, HasTheSignalsThatOthersConnectTo)
{
    const QMetaObject &meta = EcDirverReader::staticMetaObject;
    const int first = meta.indexOfSignal("graphicsConnectSignal()");
    EXPECT_GE(first, 0);
    EXPECT_EQ(meta.indexOfSignal("startKVaneBatteryTimer()"), first + 1);
    EXPECT_EQ(meta.indexOfSignal("stopKVaneBatteryTimer()"), first + 2);
}
