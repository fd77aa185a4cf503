#include "update_fixture.h"

#include "simulator/accessory_mcu.h"

#include "support/pipe_peer.h"
#include "support/process_ending.h"

#include <thread>

using namespace tarnDeviceInfos;
using tarnSimulator::McuMode;

namespace {

// Each write takes 20 ms and is followed by a pause of 1 s.
const QStringList enterTraffic {
    "1020 R 06C1 00", "1040 W 06C1 20", "2060 W 06C1 28", "3080 W 06C1 38", "4100 W 06C1 28"};
constexpr int enterTime = 5100;
constexpr int updateTime = enterTime + 1000 + 4080;

QStringList leaveTraffic(int begun)
{
    return {QString("%1 W 06C1 20").arg(begun + 20), QString("%1 W 06C1 30").arg(begun + 1040),
        QString("%1 W 06C1 20").arg(begun + 2060), QString("%1 W 06C1 00").arg(begun + 3080)};
}

} // namespace

class McuUpdate : public tarnTest::UpdateTest
{
protected:
    McuUpdate() { installFlasher("exit 0"); }

    void TearDown() override { EXPECT_FALSE(ecAccessMutex.isLocked()); }

    static QStringList runBegun(const QString &output = "")
    {
        return {"mcuUpdateProcess Enter |", R"(QList("-w", "fw.bin", "-v", "-g", "0x0", "\\\\.\\COM1"))",
            QString("Command output: \"%1\"").arg(output)};
    }
    const QStringList runDone {"mcuUpdateProcess successfully", "mcuUpdateProcess Leave |"};
    static QString complaint(const char *text)
    {
        return QString("W: mcuUpdateProcess failed. Error message:  \"%1\"").arg(text);
    }
    static QString complaintAgain(const char *text)
    {
        return QString("W: mcuUpdateProcess failed again. Error message:  \"%1\"").arg(text);
    }
    const QString leave = "mcuUpdateProcess Leave |";

    // Another thread holds the EC for that long, counted from when the operation begins to wait for it; then
    // the machine changes.
    template <typename Operation>
    void waitingFor(
        tarnTest::milliseconds time, const Operation &operation, const std::function<void()> &change = [] {})
    {
        ASSERT_TRUE(ecAccessMutex.lock());
        const int looks = machine.clock.steadyLooks;
        std::thread waiting(operation);
        EXPECT_TRUE(tarnTest::waitUntil([&] { return machine.clock.steadyLooks > looks; }));
        machine.clock.sleep(time);
        change();
        machine.traffic();
        machine.clock.forgetWaits();
        start = machine.clock.now();
        ecAccessMutex.unlock();
        waiting.join();
    }
    void becomeDock() { machine.attach(ACCESSORY_DOCK); }

    // The ways in which the KVane may be gone; in none of them may anything be written.
    [[nodiscard]] std::vector<std::function<void()>> lossesOfTheKVane()
    {
        return {[this] { machine.attach(ACCESSORY_DOCK); }, [this] { machine.attach(ACCESSORY_GRAPHICS); },
            [this] { machine.computer.detach(); },
            [this] { machine.faults().switchOn(tarnSimulator::Fault::FailRead, MCU_LINK_STATUS); },
            [this] {
                machine.faults().switchOn(tarnSimulator::Fault::FailRead, ACCESSORY_CODE);
            }};
    }
    void restoreTheKVane()
    {
        machine.faults().clear();
        machine.attach(ACCESSORY_KVANE);
    }
    [[nodiscard]] static bool writes(const QStringList &traffic) { return !traffic.filter("W ").isEmpty(); }
};

TEST_F(McuUpdate, SwitchesFlashesAndSwitchesBack)
{
    bool lockedThroughout = true;
    machine.clock.onWait = [&](auto) {
        lockedThroughout = lockedThroughout && ecAccessMutex.isLocked();
    };
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
    EXPECT_TRUE(lockedThroughout);
    EXPECT_EQ(machine.timeline(), enterTraffic + leaveTraffic(enterTime + 1000));
    EXPECT_EQ(elapsed(), updateTime);
    EXPECT_EQ(flasherRuns(), 1);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"mcuUpdate Enter |"}) + runBegun() + runDone + QStringList({"mcuUpdate Leave |"}));
}

TEST_F(McuUpdate, FlashesWhileTheBootLoaderRuns)
{
    // The flasher takes no virtual time, so it has run between these two instants.
    int runsBefore = -1;
    int runsAfter = -1;
    McuMode during = McuMode::NoFirmware;
    machine.clock.at(start + tarnTest::milliseconds(enterTime - 1), [&] { runsBefore = flasherRuns(); });
    machine.clock.at(start + tarnTest::milliseconds(enterTime + 1), [&] {
        runsAfter = flasherRuns();
        during = machine.computer.mcuMode();
    });
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
    EXPECT_EQ(runsBefore, 0);
    EXPECT_EQ(runsAfter, 1);
    EXPECT_EQ(during, McuMode::BootLoader);
    EXPECT_EQ(machine.computer.mcuMode(), McuMode::Firmware);
}

TEST_F(McuUpdate, KeepsTheOtherBitsOfTheControlByte)
{
    machine.state->xdata[EC_MCU_UPDATE_CTRL] = 0x41;
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
    EXPECT_EQ(machine.traffic(),
        QStringList({"R 06C1 41", "W 06C1 61", "W 06C1 69", "W 06C1 79", "W 06C1 69", "W 06C1 61",
            "W 06C1 71", "W 06C1 61", "W 06C1 41"}));
}

TEST_F(McuUpdate, AControlByteThatCannotBeReadIsTakenAsAllOnes)
{
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, EC_MCU_UPDATE_CTRL);
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
    EXPECT_EQ(machine.traffic(),
        QStringList({"W 06C1 FF", "W 06C1 FF", "W 06C1 FF", "W 06C1 EF", "W 06C1 E7", "W 06C1 F7",
            "W 06C1 E7", "W 06C1 C7"}));
}

TEST_F(McuUpdate, GoesOnWhenAWriteFails)
{
    machine.faults().switchOn(tarnSimulator::Fault::FailWrite, EC_MCU_UPDATE_CTRL);
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
    EXPECT_EQ(flasherRuns(), 1);
}

TEST_F(McuUpdate, NeedsAKVane)
{
    attachAccessory(ACCESSORY_DOCK);
    int saidTooEarly = -1;
    machine.clock.at(start + tarnTest::milliseconds(1999),
        [&] { saidTooEarly = static_cast<int>(machine.log.lines().size()) - 1; });
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_EQ(saidTooEarly, 0); // the warning comes after the wait
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({2000}));
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(flasherRuns(), 0);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"mcuUpdate Enter |", "W: MCU and base handshake failed!", "mcuUpdate Leave |"}));
}

// A wait that is no longer than a cycle of the monitor needs no new look for the KVane.
TEST_F(McuUpdate, ThatWaitsForTheMonitorIsAsAnyOther)
{
    using namespace std::chrono_literals;
    waitingFor(1000ms, [this] { EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0); });
    EXPECT_EQ(machine.timeline(), enterTraffic + leaveTraffic(enterTime + 1000));
}

TEST_F(McuUpdate, ThatWaitsLongerLooksForTheKVaneFirst)
{
    using namespace std::chrono_literals;
    waitingFor(1001ms, [this] { EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0); });
    const QStringList timeline = machine.timeline();
    ASSERT_EQ(timeline.size(), 11);
    EXPECT_EQ(timeline.mid(0, 3), QStringList({"20 R 06A0 04", "40 R 06A6 04", "1060 R 06C1 00"}));
    EXPECT_EQ(elapsed(), updateTime + 40);
    EXPECT_EQ(flasherRuns(), 1);
}

TEST_F(McuUpdate, ThatHasLostTheKVaneMeanwhileEndsAsWithoutOne)
{
    using namespace std::chrono_literals;
    bool lockedMeanwhile = false;
    for (const auto &loss : lossesOfTheKVane()) {
        machine.log.clear();
        waitingFor(
            1500ms, [this] { EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1); },
            [&] {
                loss();
                machine.clock.onWait = [&](tarnTest::milliseconds time) {
                    lockedMeanwhile = lockedMeanwhile || (time == 2000ms && ecAccessMutex.isLocked());
                };
            });
        EXPECT_FALSE(writes(machine.traffic()));
        EXPECT_EQ(machine.clock.waits().back(), 2000);
        EXPECT_EQ(machine.log.lines().mid(machine.log.lines().size() - 2),
            QStringList({"W: MCU and base handshake failed!", "mcuUpdate Leave |"}));
        machine.clock.onWait = {};
        restoreTheKVane();
    }
    EXPECT_EQ(flasherRuns(), 0);
    EXPECT_FALSE(lockedMeanwhile); // other users of the EC need not wait for that
}

// The accessory is pulled off while the flasher writes.
TEST_F(McuUpdate, GoesOnToItsEndWhenTheKVaneIsDetached)
{
    installFlasher("echo gone >&2");
    machine.clock.at(start + tarnTest::milliseconds(enterTime - 1), [this] { machine.computer.detach(); });
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_EQ(machine.timeline(), enterTraffic + leaveTraffic(enterTime + 1000));
    EXPECT_EQ(flasherRuns(), 3);
    monitor->pollAccessory();
    EXPECT_EQ(monitor->accessoryName(), "disconnected");
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1); // without another access
    EXPECT_EQ(machine.traffic(), QStringList({"R 06A0 00"}));
    attachAccessory(ACCESSORY_KVANE);
    installFlasher("exit 0");
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
}

TEST_F(McuUpdate, RunsTheFlasherInItsFolderWithItsArguments)
{
    installFlasher("pwd >where; for a; do printf '%s\\n' \"$a\" >>arguments; done");
    EXPECT_EQ(updater->mcuUpdateProcess("my fw.bin"), 0);
    EXPECT_EQ(machine.folder.read("function/MCU/arguments"), "-w\nmy fw.bin\n-v\n-g\n0x0\n\\\\.\\COM1\n");
    EXPECT_EQ(machine.folder.read("function/MCU/where").trimmed(),
        QFileInfo(machine.folder.path("function/MCU")).canonicalFilePath().toLocal8Bit());
}

TEST_F(McuUpdate, CountsAsDoneWithAnExitCodeAndNoComplaint)
{
    installFlasher("echo all is well; exit 3");
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
    EXPECT_EQ(flasherRuns(), 1);
    EXPECT_TRUE(machine.log.contains(runBegun("all is well\\n").last()));
}

TEST_F(McuUpdate, IsTriedThreeTimes)
{
    installFlasher("echo bad >&2");
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_EQ(flasherRuns(), 3);
    const QStringList failedRun = runBegun() + QStringList({complaint("bad\\n")});
    EXPECT_EQ(machine.log.lines(),
        QStringList({"mcuUpdate Enter |"}) + failedRun + QStringList({"Retrying..."}) + failedRun
            + QStringList({"Retrying..."}) + failedRun
            + QStringList({"W: mcuUpdateProcess failed 3 times. Sending notification...",
                complaintAgain("bad\\n"), leave, complaintAgain("bad\\n"), leave, "mcuUpdate Leave |"}));
    // The MCU has been switched back all the same, and the next update has its three runs again.
    EXPECT_EQ(machine.computer.mcuMode(), McuMode::Firmware);
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_EQ(flasherRuns(), 6);
}

TEST_F(McuUpdate, MaySucceedAtTheSecondRun)
{
    installFlasher("[ $(wc -l <runs) -eq 2 ] || echo bad >&2");
    EXPECT_EQ(updater->mcuUpdateProcess("fw.bin"), 0);
    EXPECT_EQ(machine.log.lines(),
        runBegun() + QStringList({complaint("bad\\n"), "Retrying..."}) + runBegun() + runDone
            + QStringList({leave}));
    // A success clears the count: three more runs until it is given up.
    installFlasher("echo bad >&2");
    EXPECT_EQ(updater->mcuUpdateProcess("fw.bin"), -1);
    EXPECT_EQ(flasherRuns(), 5);
}

TEST_F(McuUpdate, FailsWithoutAFlasher)
{
    QFile::remove(machine.folder.path("function/MCU/stm32flash.exe"));
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_TRUE(machine.log.contains("W: mcuUpdateProcess failed 3 times. Sending notification..."));
    EXPECT_EQ(machine.traffic().size(), 9);
}

TEST_F(McuUpdate, TakesWhateverAFlasherPrints)
{
    installFlasher("head -c 1000000 /dev/zero | tr '\\0' x");
    EXPECT_EQ(updater->mcuUpdateProcess("fw.bin"), 0);
    EXPECT_GT(machine.log.lines().at(2).size(), 1000000);
}

TEST_F(McuUpdate, IsNotRetriedWhileTheProcessEnds)
{
    installFlasher("echo bad >&2");
    tarnTest::letProcessEnd();
    EXPECT_EQ(updater->mcuUpdateProcess("fw.bin"), -1);
    EXPECT_EQ(flasherRuns(), 1);
    EXPECT_EQ(machine.log.lines().last(), "W: The service ends, so the flasher is not run again.");
}

TEST_F(McuUpdate, RunsNoFlasherOnceTheProcessEnds)
{
    machine.clock.at(start + tarnTest::milliseconds(enterTime - 100), [] { tarnTest::letProcessEnd(); });
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_EQ(flasherRuns(), 0);
    EXPECT_TRUE(machine.log.contains("W: The service ends, so the flasher is not run."));
    // The MCU is switched back as far as there is time for it.
    EXPECT_EQ(machine.traffic().size(), 9);
    EXPECT_EQ(machine.computer.mcuMode(), McuMode::Firmware);
}

TEST_F(McuUpdate, DoesNotLetAFlasherWaitForInput)
{
    installFlasher("cat >input; exit 0");
    EXPECT_EQ(updater->mcuUpdateProcess("fw.bin"), 0);
    EXPECT_TRUE(exists("function/MCU/input"));
}

// The two halves of the switching by themselves.
class McuUpdateMode : public McuUpdate
{ };

TEST_F(McuUpdateMode, KeepsTheEcFromEnterToLeave)
{
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    EXPECT_EQ(machine.timeline(), enterTraffic);
    EXPECT_EQ(elapsed(), enterTime);
    EXPECT_TRUE(ecAccessMutex.isLocked());
    EXPECT_EQ(machine.computer.mcuMode(), McuMode::BootLoader);
    int result = -1;
    std::thread([&] { result = updater->leaveMcuUpdateMode(); }).join(); // as if from another handler
    EXPECT_EQ(result, 0);
    EXPECT_EQ(machine.timeline(), leaveTraffic(0));
    EXPECT_FALSE(ecAccessMutex.isLocked());
    EXPECT_EQ(machine.computer.mcuMode(), McuMode::Firmware);
}

TEST_F(McuUpdateMode, NeedsAKVane)
{
    attachAccessory(ACCESSORY_GRAPHICS);
    EXPECT_EQ(updater->enterMcuUpdateMode(), -1);
    EXPECT_EQ(machine.log.lines(), QStringList({"hand shake status is failed!"}));
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(McuUpdateMode, CannotBeLeftUnlessItWasEntered)
{
    EXPECT_EQ(updater->leaveMcuUpdateMode(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    ASSERT_TRUE(ecAccessMutex.lock()); // a lock that another operation holds is not released
    EXPECT_EQ(updater->leaveMcuUpdateMode(), -1);
    EXPECT_TRUE(ecAccessMutex.isLocked());
    ecAccessMutex.unlock();
}

TEST_F(McuUpdateMode, ThatWaitedLongLooksForTheKVaneFirst)
{
    using namespace std::chrono_literals;
    waitingFor(1001ms, [this] { EXPECT_EQ(updater->enterMcuUpdateMode(), 0); });
    EXPECT_EQ(machine.traffic().mid(0, 3), QStringList({"R 06A0 04", "R 06A6 04", "R 06C1 00"}));
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
    machine.traffic();
    waitingFor(1000ms, [this] { EXPECT_EQ(updater->enterMcuUpdateMode(), 0); });
    EXPECT_EQ(machine.timeline(), enterTraffic);
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
}

TEST_F(McuUpdateMode, ThatHasLostTheKVaneMeanwhileIsNotEntered)
{
    using namespace std::chrono_literals;
    for (const auto &loss : lossesOfTheKVane()) {
        machine.log.clear();
        waitingFor(
            1500ms, [this] { EXPECT_EQ(updater->enterMcuUpdateMode(), -1); }, loss);
        EXPECT_FALSE(writes(machine.traffic()));
        EXPECT_EQ(machine.log.lines().last(), "hand shake status is failed!");
        EXPECT_FALSE(ecAccessMutex.isLocked());
        EXPECT_EQ(updater->leaveMcuUpdateMode(), -1);
        restoreTheKVane();
    }
}

// The monitor does not poll while a dock replaces the KVane: only the writes of the leave reach the dock.
TEST_F(McuUpdateMode, KeepsAnUpdateFromTheDockThatHasReplacedTheKVane)
{
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    download("new");
    const int looks = machine.clock.steadyLooks;
    std::thread update([this] { EXPECT_EQ(updater->copyMcuFile("fw.bin"), -1); });
    constexpr int looksBeforeTheEc = 3; // at its turn's begin and end, and when it asks for the EC
    EXPECT_TRUE(tarnTest::waitUntil([&] { return machine.clock.steadyLooks == looks + looksBeforeTheEc; }));
    becomeDock();
    machine.traffic();
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
    update.join();
    EXPECT_EQ(flasherRuns(), 0);
    EXPECT_EQ(machine.traffic(),
        QStringList({"W 06C1 20", "W 06C1 30", "W 06C1 20", "W 06C1 00", "R 06A0 04", "R 06A6 01"}));
    EXPECT_TRUE(machine.log.contains("W: MCU and base handshake failed!"));
}

// The wait for another update counts, too: the monitor has not polled in the meantime.
TEST_F(McuUpdateMode, ThatAnotherUpdateHoldsKeepsTheNextFromTheDock)
{
    download("new");
    download("newer", "next.bin");
    installFlasher(untilGo);
    std::thread first([this] { EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0); });
    EXPECT_TRUE(tarnTest::waitUntil([this] { return exists("function/MCU/running"); }));
    const int looks = machine.clock.steadyLooks;
    std::thread next([this] { EXPECT_EQ(updater->copyMcuFile("next.bin"), -1); });
    EXPECT_TRUE(tarnTest::waitUntil([&] { return machine.clock.steadyLooks > looks; }));
    becomeDock();
    machine.traffic();
    machine.folder.write("function/MCU/go", "");
    first.join();
    next.join();
    EXPECT_EQ(flasherRuns(), 1);
    EXPECT_EQ(machine.traffic(),
        QStringList({"W 06C1 20", "W 06C1 30", "W 06C1 20", "W 06C1 00", "R 06A0 04", "R 06A6 01"}));
}

TEST_F(McuUpdateMode, IsLeftOnlyWhenItHasBeenEnteredCompletely)
{
    std::thread leaving;
    std::atomic<bool> left {false};
    machine.clock.at(start + tarnTest::milliseconds(2000), [&] {
        std::atomic<bool> begun {false};
        leaving = std::thread([&] {
            begun = true;
            EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
            left = true;
        });
        while (!begun)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // time enough to come in between
        EXPECT_FALSE(left);
    });
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    leaving.join();
    EXPECT_EQ(machine.traffic(),
        QStringList({"R 06C1 00", "W 06C1 20", "W 06C1 28", "W 06C1 38", "W 06C1 28", "W 06C1 20",
            "W 06C1 30", "W 06C1 20", "W 06C1 00"}));
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

TEST_F(McuUpdateMode, IsNotEnteredWhileAFlasherOfAnEarlierRunWrites)
{
    {
        tarnTest::ScriptedProcesses processes;
        processes.paths = {QFileInfo("function/MCU/stm32flash.exe").canonicalFilePath()};
        EXPECT_EQ(updater->enterMcuUpdateMode(), -1);
        EXPECT_TRUE(machine.traffic().isEmpty());
        EXPECT_FALSE(ecAccessMutex.isLocked());
        EXPECT_TRUE(machine.log.contains(
            "W: Refused, because this tool is running already: \"./function/MCU/stm32flash.exe\""));
    }
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    // A client's own flasher may be that one, too.
    tarnTest::ScriptedProcesses processes;
    processes.paths = {QFileInfo("function/MCU/stm32flash.exe").canonicalFilePath()};
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
}

TEST_F(McuUpdateMode, MayBeEnteredTwiceAndIsLeftOnce)
{
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
    EXPECT_FALSE(ecAccessMutex.isLocked());
    EXPECT_EQ(updater->leaveMcuUpdateMode(), -1);
}

TEST_F(McuUpdateMode, PausesTheMonitor)
{
    std::thread loop([this] { monitor->run(); });
    const auto polls = [this] {
        return !machine.traffic().filter("06A0").isEmpty();
    };
    EXPECT_TRUE(tarnTest::waitUntil(polls));
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    machine.traffic();
    const auto entered = machine.clock.now();
    // The loop tests again after each pause whether it may go on.
    EXPECT_TRUE(tarnTest::waitUntil([&] { return machine.clock.now() - entered > std::chrono::seconds(2); }));
    EXPECT_FALSE(polls());
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
    EXPECT_TRUE(tarnTest::waitUntil(polls));
    monitor->requestEnd();
    loop.join();
}

TEST_F(McuUpdateMode, FailsWhenTheProcessEnds)
{
    tarnTest::letProcessEnd();
    EXPECT_EQ(updater->enterMcuUpdateMode(), -1);
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
}
