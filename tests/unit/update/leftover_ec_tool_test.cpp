#include "update/leftover_ec_tool.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/monitor/ec_dirver_reader.h"
#include "support/desktop_stand_ins.h"
#include "support/pipe_peer.h"
#include "support/process_ending.h"
#include "support/simulated_machine.h"

#include <QDir>
#include <QFileInfo>

#include <thread>

using tarnDeviceInfos::ecAccessMutex;
using tarnDeviceInfos::EcDirverReader;
using tarnFirmwareUpdate::LeftoverEcTool;
using tarnTest::waitUntil;

namespace {

const QString waitBegun = "W: The EC tool is running already, so the EC is left alone until it has ended.";
const QString waitGoesOn = "W: The EC tool is still running, so the EC is left alone.";
const QString waitOver = "The EC tool has ended, so the EC is free.";

} // namespace

// A service that has just started: nothing has accessed the EC yet.
class LeftoverTool : public tarnTest::MachineTest
{
protected:
    LeftoverTool()
    {
        QDir().mkpath("function/EC");
        machine.folder.write("function/EC/IFU_XE.exe", "");
        tarnDeviceInfos::EcDirverControllerHal::instance();
        machine.log.clear();
        processes.paths = {QFileInfo("function/EC/IFU_XE.exe").canonicalFilePath()};
    }

    void startMonitor()
    {
        loop = std::thread([] { EcDirverReader::instance()->run(); });
        EXPECT_TRUE(waitUntil([this] { return machine.log.contains("getAccessoryTypeForFirst Enter |"); }));
    }

    tarnTest::ScriptedProcesses processes;
    std::thread loop;
};

TEST_F(LeftoverTool, ThatIsNotThereChangesNothing)
{
    processes.paths = {"/nowhere/IFU_XE.exe"};
    LeftoverEcTool tool;
    EXPECT_FALSE(tool.isAwaited());
    EXPECT_FALSE(ecAccessMutex.isLocked());
    EXPECT_TRUE(machine.log.lines().isEmpty());
    // A tool that is started by hand later on does not matter.
    processes.paths = {""};
    tool.look();
    EXPECT_FALSE(ecAccessMutex.isLocked());
    EXPECT_TRUE(machine.log.lines().isEmpty());
}

TEST_F(LeftoverTool, HasTheEcToItselfUntilItEnds)
{
    LeftoverEcTool tool;
    EXPECT_TRUE(tool.isAwaited());
    EXPECT_TRUE(ecAccessMutex.isLocked());
    tool.look();
    EXPECT_TRUE(ecAccessMutex.isLocked());
    EXPECT_EQ(machine.log.lines(), QStringList({waitBegun}));
    processes.paths.clear();
    tool.look();
    EXPECT_FALSE(tool.isAwaited());
    EXPECT_FALSE(ecAccessMutex.isLocked());
    EXPECT_EQ(machine.log.lines(), QStringList({waitBegun, waitOver}));
    // A later look must not release another holder's lock.
    ASSERT_TRUE(ecAccessMutex.lock());
    tool.look();
    EXPECT_TRUE(ecAccessMutex.isLocked());
    ecAccessMutex.unlock();
}

TEST_F(LeftoverTool, IsToldOfEveryMinute)
{
    LeftoverEcTool tool;
    for (int seconds = 1; seconds <= 120; ++seconds) {
        tool.look();
        EXPECT_EQ(machine.log.count(waitGoesOn), seconds / 60) << seconds;
    }
    processes.paths.clear();
    tool.look();
}

TEST_F(LeftoverTool, IsLookedForEverySecond)
{
    LeftoverEcTool tool;
    processes.paths.clear();
    EXPECT_TRUE(waitUntil([&tool] { return !tool.isAwaited(); }, 5000));
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

// The first detection waits until the EC is free, and is made once.
TEST_F(LeftoverTool, KeepsTheMonitorWaiting)
{
    LeftoverEcTool tool;
    startMonitor();
    EXPECT_EQ(machine.log.count("getAccessoryTypeForFirst Enter |"), 1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    processes.paths.clear();
    tool.look();
    EXPECT_TRUE(waitUntil([this] { return machine.log.contains("getAccessoryTypeForFirst Leave |"); }));
    EcDirverReader::instance()->requestEnd();
    loop.join();
}

TEST_F(LeftoverTool, DoesNotHoldUpTheEndOfTheProcess)
{
    const LeftoverEcTool tool;
    startMonitor();
    EcDirverReader::instance()->requestEnd();
    tarnTest::letProcessEnd();
    loop.join();
    EXPECT_TRUE(machine.traffic().isEmpty());
}
