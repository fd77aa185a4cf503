#include "graphics_fixture.h"

#include "support/process_ending.h"

#include "platform/process_end.h"

using namespace tarnDeviceInfos;
using tarnPlatform::LaunchStage;
using tarnSimulator::Fault;

// The GPU key of a box whose GPU has been activated.
class Disengagement : public tarnTest::GraphicsTest
{
protected:
    Disengagement()
    {
        manager->handleGraphicsConnectSignal();
        forgetPast();
    }

    void pressKey(quint8 data = APP_EVENT_DATA_DISENGAGE) { present(APP_EVENT_GPU_KEY, data); }

    [[nodiscard]] QStringList steps() const
    {
        QStringList own;
        for (const QString &line : machine.log.lines()) {
            if (line.contains("GraphicsDisengaged_log") && !line.contains("GraphicsActive_log & "))
                own << line;
        }
        return own;
    }

    const QStringList beginning {
        "GraphicsDisengaged_log: Received graphics disengaged signal, begin disengagement process.",
        "GraphicsDisengaged_log: Start the graphics disengagement process.",
        "GraphicsDisengaged_log: begin to handle gpukeyevent to set gpu state."};
    const QStringList stateRead {
        "GraphicsDisengaged_log: read ecAppEventData from xdata when receive gpukeyevent successed.",
        "GraphicsDisengaged_log: get gpu driver data successed:  7 ."};
    const QStringList asked {
        "GraphicsDisengaged_log: click yes when second check.", "GraphicsDisengaged_log: begin to ban gpu."};
    const QStringList finished {"GraphicsDisengaged_log: handle gpukeyevent to set gpu state success.",
        "GraphicsDisengaged_log: Graphics disengagement process finished."};
    const QStringList failed {"W: GraphicsDisengaged_log: handle gpukeyevent to set gpu state failed.",
        "W: GraphicsDisengaged_log: Graphics disengagement process failed."};
    const QStringList eventTaken {"R 04A4 11", "W 04A4 00"};
    const QString nothingDone = "GraphicsDisengaged_log: do nothing to gpu.";
    const QString disabled = "GraphicsDisengaged_log: Disabled 4060 series GPU at index 1";
    const QString endsNow = "W: GraphicsDisengaged_log: The service ends, so the gpu is not disabled.";
    const QString clientNotice = tarnTest::notification("disengagedGraphics", "");

    static QStringList written(int state)
    {
        return {QString("GraphicsDisengaged_log: Success to write gpuDriverData:  %1 to XEC_APP_CMD_DATA0.")
                    .arg(state),
            "GraphicsDisengaged_log: Successed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ",
            "GraphicsDisengaged_log: handle gpukeyevent to set gpu state finish."};
    }
};

TEST_F(Disengagement, OnAYesTellsTheClientAndTheEc)
{
    const tarnTest::QueueMark queue;
    bool startedUntilThen = false;
    QStringList toldUntilThen;
    session.onShow = [&] {
        machine.clock.at(
            machine.clock.now() + tarnTest::milliseconds(1), [&] { toldUntilThen = queue.added(); });
        machine.clock.at(machine.clock.now() + tarnTest::milliseconds(1999),
            [&] { startedUntilThen = device("gpu").started; });
    };
    pressKey();
    EXPECT_EQ(toldUntilThen, QStringList({clientNotice}));
    EXPECT_TRUE(machine.log.contains("GraphicsActive_log & GraphicsDisengaged_log: ecAppEvent is 0x11."));
    EXPECT_EQ(session.shown, QStringList({"wait 30000 --disengaged-graphics"}));
    EXPECT_TRUE(startedUntilThen);
    EXPECT_FALSE(device("gpu").started);
    EXPECT_EQ(queue.added(), QStringList({clientNotice}));
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 R 04A4 11", "40 W 04A4 00", "60 R 04A5 04", "2080 W 04B1 03", "2100 W 04B0 10"}));
    EXPECT_EQ(steps(),
        beginning + stateRead + asked
            + QStringList({disabled, "GraphicsDisengaged_log: ban gpu successed.",
                "GraphicsDisengaged_log: after ban gpu, gpuDriverData is  3 ."})
            + written(gpuNotStarted) + finished);
}

TEST_F(Disengagement, OnANoLeavesEverythingAsItIs)
{
    session.exitCode = 0;
    const tarnTest::QueueMark queue;
    pressKey();
    EXPECT_TRUE(device("gpu").started);
    EXPECT_TRUE(queue.added().isEmpty());
    EXPECT_EQ(machine.traffic(), eventTaken + QStringList({"R 04A5 04"}));
    EXPECT_EQ(steps(),
        beginning + stateRead + QStringList({"GraphicsDisengaged_log: click no when second check."})
            + finished);
}

TEST_F(Disengagement, AQuestionThatCannotBeAskedIsANo)
{
    session.serviceSession = true;
    session.stage = LaunchStage::NoActiveSession;
    pressKey();
    EXPECT_TRUE(device("gpu").started);
    EXPECT_EQ(steps().last(), finished.last());
}

TEST_F(Disengagement, WithoutARequestOnlyReportsTheState)
{
    pressKey(0xFB); // every bit but that of the request
    EXPECT_TRUE(session.shown.isEmpty());
    EXPECT_EQ(machine.traffic(), eventTaken + QStringList({"R 04A5 FB", "W 04B1 07", "W 04B0 10"}));
    EXPECT_EQ(steps(), beginning + stateRead + QStringList({nothingDone}) + written(gpuActive) + finished);
}

TEST_F(Disengagement, AFailedDisableIsShownAndNotReported)
{
    fail(Fault::FailDeviceDisable, "gpu");
    pressKey();
    EXPECT_EQ(machine.traffic(), eventTaken + QStringList({"R 04A5 04"}));
    EXPECT_EQ(session.shown,
        QStringList({"wait 30000 --disengaged-graphics", "detached --graphics-disengaged-failed"}));
    EXPECT_EQ(steps(),
        beginning + stateRead + asked
            + QStringList({"GraphicsDisengaged_log: Failed to disable 4060 series GPU at index 1",
                "W: GraphicsDisengaged_log: ban gpu failed."})
            + failed);
}

TEST_F(Disengagement, TheResultsTellWhatFailed)
{
    fail(Fault::FailDeviceDisable, "gpu");
    machine.state->xdata[XEC_APP_EVENT_DATA] = APP_EVENT_DATA_DISENGAGE;
    EXPECT_EQ(manager->handleGpuKeyEvent(), -2);
    machine.faults().clear();
    machine.faults().switchOn(Fault::FailRead, XEC_APP_EVENT_DATA);
    EXPECT_EQ(manager->handleGpuKeyEvent(), -1);
    machine.faults().clear();
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_EQ(manager->handleGpuKeyEvent(), -1);
    for (const quint16 address : {XEC_APP_CMD_DATA0, XEC_APP_CMD}) {
        machine.faults().clear();
        setCondition("gpu", true, noProblem);
        machine.faults().switchOn(Fault::FailWrite, address);
        EXPECT_EQ(manager->handleGpuKeyEvent(), -1) << address;
        EXPECT_FALSE(device("gpu").started) << address;
    }
    machine.faults().clear();
    EXPECT_EQ(manager->handleGpuKeyEvent(), 0);
}

TEST_F(Disengagement, EventDataThatCannotBeReadIsAFailureThatIsShown)
{
    machine.faults().switchOn(Fault::FailRead, XEC_APP_EVENT_DATA);
    pressKey();
    EXPECT_EQ(steps(),
        beginning
            + QStringList({"W: GraphicsDisengaged_log: read ecAppEventData from xdata when receive "
                           "gpukeyevent failed."})
            + failed);
    EXPECT_EQ(session.shown, QStringList({"detached --graphics-disengaged-failed"}));
}

TEST_F(Disengagement, AnUnknownStateIsAFailureThatIsShown)
{
    processes.programs << "Tarn.exe"; // shown whether or not the client runs
    machine.faults().switchOn(Fault::FailDeviceList);
    pressKey();
    EXPECT_EQ(steps(),
        beginning
            + QStringList({stateRead.first(),
                "GraphicsDisengaged_log: handle gpu ec app event B failed when get gpu driver data."})
            + failed);
    EXPECT_EQ(session.shown, QStringList({"detached --graphics-disengaged-failed"}));
}

TEST_F(Disengagement, AFailedDataByteKeepsTheCommandBack)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_APP_CMD_DATA0);
    pressKey(0);
    EXPECT_EQ(machine.traffic(), eventTaken + QStringList({"R 04A5 00"}));
    EXPECT_EQ(steps(),
        beginning + stateRead
            + QStringList({nothingDone,
                "W: GraphicsDisengaged_log: Failed to write gpuDriverData:  7 to XEC_APP_CMD_DATA0. "})
            + failed);
}

TEST_F(Disengagement, AFailedCommandIsAFailureThatIsShown)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_APP_CMD);
    pressKey(0);
    EXPECT_EQ(steps(),
        beginning + stateRead
            + QStringList({nothingDone, written(gpuActive).first(),
                "W: GraphicsDisengaged_log: Failed to write APP_CMD_PEG_STATE to XEC_APP_CMD. "})
            + failed);
}

TEST_F(Disengagement, IsRefusedWhileOneRuns)
{
    session.onShow = [this] {
        session.onShow = nullptr;
        manager->graphicsDisengagementProcess();
    };
    pressKey();
    EXPECT_EQ(
        machine.log.count("GraphicsDisengaged_log: last graphics disable process does not finished."), 1);
    EXPECT_EQ(session.shown.size(), 1);
    EXPECT_EQ(steps().last(), finished.last());
}

TEST_F(Disengagement, SwitchesNothingOnceTheProcessEnds)
{
    session.onShow = [this] {
        machine.clock.at(
            machine.clock.now() + tarnTest::milliseconds(1999), [] { tarnTest::letProcessEnd(); });
    };
    pressKey();
    EXPECT_TRUE(device("gpu").started);
    EXPECT_EQ(session.shown, QStringList({"wait 30000 --disengaged-graphics"})); // and no notice
    EXPECT_EQ(machine.traffic(), eventTaken + QStringList({"R 04A5 04"}));
    EXPECT_TRUE(machine.log.contains(endsNow));
}

// The end of the process waits for an unfinished step, so the EC hears of a GPU that has been disabled, and
// does not wait for the question or for the 2 s that the client gets to let the GPU go.
TEST_F(Disengagement, AStopDuringTheDisablingIsHeardAfterTheReport)
{
    QStringList unfinishedAt;
    machine.log.onLine = [&](const QString &line) {
        if (tarnPlatform::UnfinishedStep::any())
            unfinishedAt << line;
        if (line == disabled)
            tarnTest::letProcessEnd();
    };
    pressKey();
    EXPECT_FALSE(device("gpu").started);
    EXPECT_EQ(machine.traffic(), eventTaken + QStringList({"R 04A5 04", "W 04B1 03", "W 04B0 10"}));
    EXPECT_EQ(unfinishedAt,
        QStringList({asked.last(), disabled, "GraphicsDisengaged_log: ban gpu successed.",
            "GraphicsDisengaged_log: after ban gpu, gpuDriverData is  3 ."})
            + written(gpuNotStarted));
    EXPECT_EQ(session.shown, QStringList({"wait 30000 --disengaged-graphics"}));
}

// A notice waits for the user, so the end of the process must not wait for it.
TEST_F(Disengagement, TheNoticeOfAFailureIsNoUnfinishedStep)
{
    fail(Fault::FailDeviceDisable, "gpu");
    std::vector<bool> unfinished;
    session.onShow = [&] {
        unfinished.push_back(tarnPlatform::UnfinishedStep::any());
    };
    pressKey();
    EXPECT_EQ(unfinished, std::vector<bool>({false, false}));
}

TEST_F(Disengagement, ABanThatHasBegunIsAnUnfinishedStep)
{
    QStringList unfinishedAt;
    machine.log.onLine = [&](const QString &line) {
        if (tarnPlatform::UnfinishedStep::any())
            unfinishedAt << line;
    };
    manager->banGpu();
    EXPECT_EQ(unfinishedAt, QStringList({disabled, "GraphicsDisengaged_log: ban gpu successed."}));
    setCondition("gpu", true, noProblem);
    unfinishedAt.clear();
    manager->banGpuForMcuUpdate();
    EXPECT_EQ(
        unfinishedAt, QStringList({disabled, "GraphicsDisengaged_log: ban gpu successed for mcu update."}));
}

TEST_F(Disengagement, ABanBeforeAnUpdateSaysWhatItWaitsForBeforeItWaits)
{
    const auto begun = machine.clock.now();
    std::vector<qint64> times;
    machine.log.onLine = [&](const QString &) {
        times.push_back((machine.clock.now() - begun).count());
    };
    manager->banGpuForMcuUpdate();
    EXPECT_EQ(times, std::vector<qint64>({0, 3000, 3000}));
    times.clear();
    setCondition("gpu", true, noProblem);
    manager->banGpu();
    EXPECT_EQ(times, std::vector<qint64>({3000, 5000, 5000})); // the client gets two seconds
}

TEST_F(Disengagement, TheEndOfTheProcessCountsAsAFailedDisable)
{
    machine.state->xdata[XEC_APP_EVENT_DATA] = APP_EVENT_DATA_DISENGAGE;
    session.onShow = [] {
        tarnTest::letProcessEnd();
    };
    EXPECT_EQ(manager->handleGpuKeyEvent(), -2);
    EXPECT_TRUE(device("gpu").started);
}

TEST_F(Disengagement, TheBansSwitchNothingOnceTheProcessEnds)
{
    machine.clock.at(machine.clock.now() + tarnTest::milliseconds(1999), [] { tarnTest::letProcessEnd(); });
    manager->banGpu();
    EXPECT_EQ(machine.log.lines().last(), endsNow);
    manager->banGpuForMcuUpdate();
    EXPECT_EQ(machine.log.count(endsNow), 2);
    EXPECT_TRUE(device("gpu").started);
}

TEST_F(Disengagement, IsPossibleAgainAfterEachEnd)
{
    session.exitCode = 0;
    pressKey();
    session.exitCode = 1;
    pressKey();
    EXPECT_FALSE(device("gpu").started);
    // Now that the GPU is gone, the key means nothing until the next activation.
    forgetPast();
    pressKey();
    EXPECT_EQ(machine.traffic(), eventTaken);
    present(APP_EVENT_GRAPHICS_CONNECTED);
    EXPECT_TRUE(device("gpu").started);
    pressKey();
    EXPECT_FALSE(device("gpu").started);
}

TEST_F(Disengagement, OneAdapterThatIsDisabledEndsTheActivationWhateverBecomesOfTheOther)
{
    addDevice("second", tarnSimulator::DeviceKind::Display, "NVIDIA GeForce RTX 4060");
    fail(Fault::FailDeviceDisable, "gpu");
    pressKey();
    EXPECT_FALSE(device("second").started);
    EXPECT_EQ(steps().mid(steps().size() - 2), failed);
    forgetPast();
    pressKey();
    EXPECT_EQ(machine.traffic(), eventTaken);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"GraphicsActive_log & GraphicsDisengaged_log: ignore disengaged signal, gpu is still "
                     "connection after ban it."}));
}

TEST_F(Disengagement, ThatFoundNothingToDisableLeavesTheActivationInForce)
{
    setCondition("gpu", false, disabledDevice);
    pressKey();
    EXPECT_EQ(steps().last(), finished.last());
    session.shown.clear();
    pressKey();
    EXPECT_EQ(session.shown, QStringList({"wait 30000 --disengaged-graphics"}));
}

TEST_F(Disengagement, RunsUntilItsNoticeHasBeenShown)
{
    fail(Fault::FailDeviceDisable, "gpu");
    session.onShow = [this] {
        if (!session.shown.last().endsWith("--graphics-disengaged-failed"))
            return;
        session.onShow = nullptr;
        manager->graphicsDisengagementProcess();
    };
    pressKey();
    EXPECT_EQ(session.shown.size(), 2);
    EXPECT_EQ(machine.log.lines().last(),
        "GraphicsDisengaged_log: last graphics disable process does not finished.");
}

class FirstDisengagement : public tarnTest::GraphicsTest
{ };

TEST_F(FirstDisengagement, IsRefusedBeforeAnyActivation)
{
    manager->graphicsDisengagementProcess();
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {"GraphicsDisengaged_log: Received graphics disengaged signal, begin disengagement process.",
                "W: GraphicsDisengaged_log: graphics disable process for first doesnot finished."}));
    EXPECT_TRUE(machine.traffic().isEmpty());
}
