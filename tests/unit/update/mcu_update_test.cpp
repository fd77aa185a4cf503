#include "update_fixture.h"

#include "simulator/accessory_mcu.h"

#include "support/pipe_peer.h"

#include <thread>

using namespace tarnDeviceInfos;
using tarnSimulator::McuMode;

namespace {

// Each write takes its 20 ms and is followed by a second.
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
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({2000}));
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(flasherRuns(), 0);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"mcuUpdate Enter |", "W: MCU and base handshake failed!", "mcuUpdate Leave |"}));
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
    ecAccessMutex.releaseWaiters();
    EXPECT_EQ(updater->mcuUpdateProcess("fw.bin"), -1);
    EXPECT_EQ(flasherRuns(), 1);
    EXPECT_EQ(machine.log.lines().last(), "W: The service ends, so the flasher is not run again.");
}

TEST_F(McuUpdate, RunsNoFlasherOnceTheProcessEnds)
{
    machine.clock.at(start + tarnTest::milliseconds(enterTime - 100), [] { ecAccessMutex.releaseWaiters(); });
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
    ASSERT_TRUE(ecAccessMutex.lock()); // somebody else's lock is not given back
    EXPECT_EQ(updater->leaveMcuUpdateMode(), -1);
    EXPECT_TRUE(ecAccessMutex.isLocked());
    ecAccessMutex.unlock();
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
    // The loop goes on looking whether it may, each time after a pause.
    EXPECT_TRUE(tarnTest::waitUntil([&] { return machine.clock.now() - entered > std::chrono::seconds(2); }));
    EXPECT_FALSE(polls());
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
    EXPECT_TRUE(tarnTest::waitUntil(polls));
    monitor->requestEnd();
    loop.join();
}

TEST_F(McuUpdateMode, MakesAnUpdateWait)
{
    EXPECT_EQ(updater->enterMcuUpdateMode(), 0);
    std::atomic<bool> done {false};
    std::thread update([&] {
        EXPECT_EQ(updater->mcuUpdate("fw.bin"), 0);
        done = true;
    });
    EXPECT_TRUE(tarnTest::waitUntil([this] { return machine.log.contains("mcuUpdate Enter |"); }));
    EXPECT_FALSE(done);
    EXPECT_EQ(updater->leaveMcuUpdateMode(), 0);
    update.join();
    EXPECT_TRUE(done);
}

TEST_F(McuUpdateMode, FailsWhenTheProcessEnds)
{
    ecAccessMutex.releaseWaiters();
    EXPECT_EQ(updater->enterMcuUpdateMode(), -1);
    EXPECT_EQ(updater->mcuUpdate("fw.bin"), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
}
