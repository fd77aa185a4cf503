#include "simulator/platform/simulated_computer.h"

#include "platform/device_manager.h"
#include "platform/user_session.h"
#include "simulator/machine_state.h"
#include "simulator/state_location.h"
#include "support/log_capture.h"
#include "support/run_folder.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using tarnPlatform::simulatedComputer;

// The state file that the process itself opens, where no test has put a machine in its place.
class SimulatedComputerOfProcess : public ::testing::Test
{
protected:
    void nameStateFile(const QString &file)
    {
        qputenv(tarnSimulator::stateFileVariable, QFile::encodeName(folder.path(file)));
    }

    tarnTest::RunFolder folder;
    tarnTest::LogCapture log;
};

TEST_F(SimulatedComputerOfProcess, IsMadeWhereTheEnvironmentSays)
{
    nameStateFile("some.state");
    tarnSimulator::MachineState *machine = simulatedComputer();
    ASSERT_NE(machine, nullptr);
    EXPECT_TRUE(QFileInfo::exists(folder.path("some.state")));
    EXPECT_EQ(simulatedComputer(), machine);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(SimulatedComputerOfProcess, ThatIsMissingIsReportedOnce)
{
    nameStateFile("no/such/folder/some.state");
    EXPECT_EQ(simulatedComputer(), nullptr);
    EXPECT_EQ(simulatedComputer(), nullptr);
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().startsWith(
        "W: There is no simulated computer: The simulated computer cannot be created in "));
}

TEST_F(SimulatedComputerOfProcess, HasNeitherDevicesNorDesktopWhenItIsMissing)
{
    nameStateFile("no/such/folder/some.state");
    using tarnPlatform::DeviceManager;
    EXPECT_EQ(DeviceManager::system().displayAdapters(DeviceManager::Text::Ansi), nullptr);
    EXPECT_EQ(DeviceManager::system().allDevices(), nullptr);
    auto &session = tarnPlatform::UserSession::system();
    EXPECT_FALSE(session.isServiceSession());
    EXPECT_EQ(session.runForConsoleUser("x", "y").stage, tarnPlatform::LaunchStage::NoActiveSession);
    EXPECT_EQ(session.consoleUserDownloadFolder(), QString());
    EXPECT_FALSE(session.asConsoleUser([] { FAIL(); }));
}
