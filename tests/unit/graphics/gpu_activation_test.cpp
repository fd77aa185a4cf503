#include "graphics_fixture.h"

#include "support/process_ending.h"

#include "platform/process_end.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;

class GpuActivation : public tarnTest::GraphicsTest
{
protected:
    // The lines of the log that come from the activation itself.
    [[nodiscard]] QStringList steps() const
    {
        QStringList own;
        for (const QString &line : machine.log.lines()) {
            if (!line.contains("GraphicsActive_log & ")
                && (line.contains("GraphicsActive_log") || line.contains("popup")))
                own << line;
        }
        return own;
    }
    static QStringList beginning(int found)
    {
        return {"GraphicsActive_log: Received GPU connect signal.",
            "GraphicsActive_log: Start the graphics active process.",
            QString("GraphicsActive_log: get gpu driver data when graphics active process begin:  %1")
                .arg(found)};
    }
    static QString reported(int state)
    {
        return QString("GraphicsActive_log: Success to write gpuDriverDataFirst:  %1 to XEC_APP_CMD_DATA0.")
            .arg(state);
    }
    const QString commandWritten =
        "GraphicsActive_log: Successed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ";
    static constexpr int noGpu = 0;
    static QString stateWritten(int state)
    {
        return QString("W 04B1 %1").arg(state, 2, 16, QLatin1Char('0'));
    }
    static QStringList report(int state) { return {stateWritten(state), "W 04B0 10"}; }

    // The activation is reported as ever, but not shown while the client application runs.
    void expectLeftToTheClient(
        tarnAccessoryManager::GraphicsAccessoryManager &activated, int state, const char *popup)
    {
        processes.programs << "TARN.EXE";
        session.shown.clear();
        EXPECT_EQ(activated.graphicsActiveProcess(), -1);
        EXPECT_EQ(machine.traffic(), report(state));
        EXPECT_TRUE(session.shown.isEmpty());
        EXPECT_TRUE(machine.log.contains("\"Tarn.exe\"  is running."));
        EXPECT_TRUE(
            machine.log.contains(QString("Tarn.exe is running, don't shou the %1 error popup.").arg(popup)));
    }
};

TEST_F(GpuActivation, BringsTheGpuUpAndTellsTheEc)
{
    std::vector<qint64> times;
    machine.log.onLine = [&](const QString &) {
        times.push_back(machine.clock.now().count());
    };
    EXPECT_EQ(manager->graphicsActiveProcess(), 0);
    EXPECT_TRUE(device("gpu").started);
    EXPECT_EQ(machine.timeline(), QStringList({"3020 W 04B1 07", "3040 W 04B0 10"}));
    // The log shows the wait apart from the steps after it.
    EXPECT_EQ(times.at(1) - times.at(0), 3000);
    EXPECT_EQ(machine.clock.waits().front(), 3000);
    EXPECT_EQ(steps(),
        beginning(gpuNotStarted)
            + QStringList({"GraphicsActive_log: Enabled 4060 series GPU at index 1",
                "GraphicsActive_log: active gpu successed.",
                "GraphicsActive_log: get gpu driver data after active gpu driver:  7", reported(gpuActive),
                commandWritten}));
    EXPECT_TRUE(session.shown.isEmpty());
}

TEST_F(GpuActivation, LeavesARunningGpuAsItIs)
{
    setCondition("gpu", true, noProblem);
    fail(Fault::FailDeviceEnable, "gpu");
    EXPECT_EQ(manager->graphicsActiveProcess(), 0);
    EXPECT_EQ(machine.traffic(), report(gpuActive));
    EXPECT_EQ(steps().filter("Enabled"), QStringList());
}

TEST_F(GpuActivation, ReportsTheGpuAsActiveThoughItHasNotStartedYet)
{
    // Enabling is accepted, but the driver is not up.
    setCondition("gpu", false, noDriverInstalled);
    EXPECT_EQ(manager->graphicsActiveProcess(), 0);
    EXPECT_FALSE(device("gpu").started);
    EXPECT_EQ(machine.traffic(), report(gpuActive));
}

TEST_F(GpuActivation, ShowsThatTheDriverIsMissing)
{
    rename("gpu", "Microsoft Basic Display Adapter");
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_EQ(machine.traffic(), report(gpuWithoutDriver));
    EXPECT_EQ(session.shown, QStringList({"detached --graphics-driver-error"}));
    EXPECT_EQ(steps(),
        beginning(gpuWithoutDriver)
            + QStringList({"W: GraphicsActive_log: Gpu driver does not exist!",
                "Tarn.exe is not running, shou the driver error popup.", reported(gpuWithoutDriver),
                commandWritten}));
    expectLeftToTheClient(*manager, gpuWithoutDriver, "driver");
}

// A manager that finds no graphics device at all.
class AbsentDevice : public GpuActivation
{
protected:
    struct Manager : tarnAccessoryManager::GraphicsAccessoryManager
    {
        int getGpuDriverData() override { return 0; }
    };
    Manager absent;
};

TEST_F(AbsentDevice, IsShownAndReported)
{
    EXPECT_EQ(absent.graphicsActiveProcess(), -1);
    EXPECT_EQ(machine.traffic(), report(noGpu));
    EXPECT_EQ(session.shown, QStringList({"detached --graphics-device-error"}));
    EXPECT_TRUE(machine.log.contains("W: GraphicsActive_log: Graphics does not exist!"));
    EXPECT_TRUE(machine.log.contains("Tarn.exe is not running, shou the device error popup."));
    expectLeftToTheClient(absent, noGpu, "device");
}

class FailedDriver : public GpuActivation, public ::testing::WithParamInterface<std::uint32_t>
{ };

TEST_P(FailedDriver, NeedsThePatchAndIsReportedAsNotStarted)
{
    setCondition("gpu", true, GetParam()); // the bit of the report is cleared whatever the status says
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_EQ(machine.traffic(), report(gpuNotStarted));
    EXPECT_EQ(session.shown, QStringList({"detached --graphics-patch-error"}));
    EXPECT_EQ(steps(),
        beginning(gpuActive)
            + QStringList({"W: GraphicsActive_log: Gpu driver status error!",
                "Tarn.exe is not running, shou the patch error popup.", commandWritten}));
    expectLeftToTheClient(*manager, gpuNotStarted, "patch");
}

INSTANTIATE_TEST_SUITE_P(Problems, FailedDriver, ::testing::Values(43U, 31U));

TEST_F(GpuActivation, EndsWithoutAReportWhenTheStateCannotBeTold)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(steps().last(),
        "W: GraphicsActive_log: failed to get gpu driver data when graphics active process begin: -1 .");
}

TEST_F(GpuActivation, EndsWithoutAReportWhenEnablingFails)
{
    fail(Fault::FailDeviceEnable, "gpu");
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(steps().last(), "W: GraphicsActive_log: active gpu failed.");
    EXPECT_TRUE(session.shown.isEmpty());
}

TEST_F(GpuActivation, EndsWithoutAReportWhenTheStateCannotBeToldAfterwards)
{
    machine.faults().switchOn(Fault::FailDeviceList, 4, 4); // two for the state, the check and enabling
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(steps().last(),
        "W: GraphicsActive_log: failed to get gpu driver data  after active gpu driver: -1 .");
}

struct FailedReport
{
    const char *description;
    std::uint32_t problem;
    int state;
};

class FailedGpuReport : public GpuActivation, public ::testing::WithParamInterface<FailedReport>
{ };

// Whatever it is about, a report that fails is logged: first that of the state, then the command.
TEST_P(FailedGpuReport, IsLogged)
{
    rename("gpu", GetParam().description);
    setCondition("gpu", false, GetParam().problem);
    machine.faults().switchOn(Fault::FailWrite, XEC_APP_CMD_DATA0);
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(steps().last(),
        QString("W: GraphicsActive_log: Failed to write gpuDriverDataFirst:  %1 to XEC_APP_CMD_DATA0. ")
            .arg(GetParam().state));
    machine.faults().clear();
    machine.faults().switchOn(Fault::FailWrite, XEC_APP_CMD);
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_EQ(machine.traffic(), QStringList({stateWritten(GetParam().state)}));
    EXPECT_EQ(steps().last(), "W: GraphicsActive_log: Failed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ");
}

INSTANTIATE_TEST_SUITE_P(States, FailedGpuReport,
    ::testing::Values(FailedReport {"NVIDIA GeForce RTX 4060 Ti", 22, 7},
        FailedReport {"Microsoft Basic Display Adapter", 22, 1},
        FailedReport {"NVIDIA GeForce RTX 4060 Ti", 43, 3}));

// The end of the process waits for an unfinished step, so the EC hears of a GPU that has been enabled.
TEST_F(GpuActivation, AStopDuringTheEnablingIsHeardAfterTheReport)
{
    const bool before = tarnPlatform::UnfinishedStep::any();
    bool during = false;
    machine.log.onLine = [&](const QString &line) {
        if (line == "GraphicsActive_log: Enabled 4060 series GPU at index 1") {
            during = tarnPlatform::UnfinishedStep::any();
            tarnTest::letProcessEnd();
        } else if (line == "GraphicsActive_log: Received GPU connect signal.") {
            EXPECT_FALSE(tarnPlatform::UnfinishedStep::any());
        } else if (line == commandWritten) {
            EXPECT_TRUE(tarnPlatform::UnfinishedStep::any());
        }
    };
    EXPECT_EQ(manager->graphicsActiveProcess(), 0);
    EXPECT_TRUE(during);
    EXPECT_FALSE(before || tarnPlatform::UnfinishedStep::any());
    EXPECT_EQ(machine.traffic(), report(gpuActive));
}

// Between the look after the pause and the switching lie several lists of devices.
TEST_F(GpuActivation, AStopDuringTheLooksAtTheDevicesEnablesNothing)
{
    machine.log.onLine = [](const QString &line) {
        if (line == "Device info list destroyed for display adapters.")
            tarnTest::letProcessEnd();
    };
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_FALSE(device("gpu").started);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(steps().last(), "W: GraphicsActive_log: The service ends, so the graphics are not activated.");
}

TEST_F(GpuActivation, SwitchesNothingOnceTheProcessEnds)
{
    machine.clock.at(machine.clock.now() + tarnTest::milliseconds(2999), [] { tarnTest::letProcessEnd(); });
    EXPECT_EQ(manager->graphicsActiveProcess(), -1);
    EXPECT_FALSE(device("gpu").started);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(steps().last(), "W: GraphicsActive_log: The service ends, so the graphics are not activated.");
}

TEST_F(GpuActivation, ResetsTheSoundAfterSuccess)
{
    setCondition("gpu-audio", false, failedStart);
    manager->handleGraphicsConnectSignal();
    EXPECT_TRUE(device("gpu-audio").started);
    const QStringList lines = machine.log.lines();
    EXPECT_EQ(lines.first(), "GraphicsActive_log: Received graphics connected signal, begin active process.");
    EXPECT_TRUE(lines.contains("GraphicsActive_log: Successed to active graphics."));
    EXPECT_EQ(lines.last(), "High Definition Audio Device has been reset.");
}

TEST_F(GpuActivation, LeavesTheSoundAloneAfterAFailure)
{
    setCondition("gpu-audio", false, failedStart);
    fail(Fault::FailDeviceEnable, "gpu");
    manager->handleGraphicsConnectSignal();
    EXPECT_FALSE(device("gpu-audio").started);
    EXPECT_EQ(machine.log.lines().last(), "W: GraphicsActive_log: Failed to active graphics.");
    manager->graphicsDisengagementProcess();
    EXPECT_TRUE(machine.log.contains("GraphicsDisengaged_log: Start the graphics disengagement process."));
}

TEST_F(GpuActivation, AtTheStartHasItsOwnWords)
{
    setCondition("gpu-audio", false, failedStart);
    manager->gpuActiveProcessFirst();
    EXPECT_TRUE(device("gpu-audio").started);
    EXPECT_EQ(machine.log.lines().first(), "GraphicsActive_log: Gpu has connected when app begin to run.");
    EXPECT_TRUE(machine.log.contains("GraphicsActive_log: Successed to active graphics for first."));
    // From now on the key is obeyed.
    present(APP_EVENT_GPU_KEY, APP_EVENT_DATA_DISENGAGE);
    EXPECT_EQ(session.shown, QStringList({"wait 30000 --disengaged-graphics"}));
}

TEST_F(GpuActivation, AtTheStartMayFail)
{
    fail(Fault::FailDeviceEnable, "gpu");
    manager->gpuActiveProcessFirst();
    EXPECT_EQ(machine.log.lines().last(), "GraphicsActive_log: Failed to active graphics for first.");
    // The key is not obeyed, but a disengagement would no longer be refused.
    present(APP_EVENT_GPU_KEY, APP_EVENT_DATA_DISENGAGE);
    EXPECT_TRUE(session.shown.isEmpty());
    manager->graphicsDisengagementProcess();
    EXPECT_TRUE(machine.log.contains("GraphicsDisengaged_log: Start the graphics disengagement process."));
}
