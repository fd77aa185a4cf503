#include "end_to_end/running_service.h"

#include "device/ec_registers.h"
#include "support/child_process.h"
#include "support/time_bound.h"

#include <QElapsedTimer>
#include <QFile>

using namespace tarnDeviceInfos;
using tarnTest::waitUntil;

// The graphics box, its GPU and the user who is asked about it.
class GraphicsBox : public tarnTest::RunningService
{
protected:
    // gpuDriverData
    static constexpr int withoutDriver = GPU_PRESENT;
    static constexpr int notStarted = withoutDriver | GPU_DRIVER_INSTALLED;
    static constexpr int active = notStarted | GPU_STARTED;
    // Problem codes of the configuration manager
    static constexpr std::uint32_t failedStart = 10;
    static constexpr std::uint32_t disabledDevice = 22;
    static constexpr std::uint32_t failedAdd = 31;
    static constexpr std::uint32_t failedPostStart = 43;

    void TearDown() override
    {
        desktop().setAnswer(0); // closes a window that a failed test has left open
        RunningService::TearDown();
        EXPECT_EQ(service.state().devices.listsOpened, service.state().devices.listsClosed);
    }

    [[nodiscard]] tarnSimulator::Desktop &desktop() { return service.computer().desktop(); }
    [[nodiscard]] tarnSimulator::Device gpu()
    {
        return service.computer().devices().device(*service.computer().devices().find("gpu"));
    }
    void changeGpu(const std::function<void(tarnSimulator::Device &)> &change)
    {
        tarnSimulator::Device changed = gpu();
        change(changed);
        service.computer().devices().store(*service.computer().devices().find("gpu"), changed);
    }
    [[nodiscard]] int reported() { return service.computer().gpuReports().gpuDriverData; }

    void plugIn()
    {
        service.attach(ACCESSORY_GRAPHICS);
        ASSERT_TRUE(client.waitForNotification("changeAccessoryType", "graphics"));
    }
    void plugInAndActivate()
    {
        plugIn();
        ASSERT_TRUE(service.waitForLog("GraphicsActive_log: Successed to active graphics."));
    }
    // A window that is killed with the service is missed a second later.
    [[nodiscard]] bool waitUntilNoWindowIsOpen()
    {
        return waitUntil([&] { return desktop().windowsOpen() == 0; }, tarnTest::allowedMs(4000));
    }
    void expectWindowToGoWithTheService(const char *programSwitch)
    {
        ASSERT_TRUE(waitForOpenWindow(programSwitch));
        QElapsedTimer time;
        time.start();
        EXPECT_EQ(service.stop(), 0);
        EXPECT_LT(time.elapsed(), tarnTest::allowedMs(4000));
        EXPECT_TRUE(waitUntilNoWindowIsOpen());
    }
    void expectWindowToGoWithAKilledService(const char *programSwitch)
    {
        ASSERT_TRUE(waitForOpenWindow(programSwitch));
        service.kill();
        EXPECT_TRUE(waitUntilNoWindowIsOpen());
    }
    [[nodiscard]] bool waitForReport(std::uint32_t count)
    {
        return waitUntil([&] { return service.computer().gpuReports().count >= count; }, 30000);
    }
    // One that reports itself again and again. On a busy machine a report may be late by more than the second
    // after which a window is taken for a killed one.
    [[nodiscard]] bool waitForOpenWindow(const char *programSwitch)
    {
        return waitForWindow(programSwitch) && waitUntil([&] { return desktop().windowsOpen() == 1; }, 30000);
    }
    [[nodiscard]] bool waitForWindow(const char *programSwitch)
    {
        return waitUntil(
            [&] { return desktop().windowsShown() > 0 && desktop().lastSwitch() == programSwitch; }, 30000);
    }
};

TEST_F(GraphicsBox, PopupsTellThatTheDriverIsMissing)
{
    changeGpu([](auto &changed) { changed.description = "Microsoft Basic Display Adapter"; });
    plugIn();
    EXPECT_TRUE(waitForReport(1));
    EXPECT_EQ(reported(), withoutDriver);
    EXPECT_TRUE(waitForWindow("--graphics-driver-error"));
    EXPECT_TRUE(service.waitForLog("GraphicsActive_log: Failed to active graphics."));
}

TEST_F(GraphicsBox, PopupsTellThatTheGpuCouldNotBeReleased)
{
    plugInAndActivate();
    service.breakDown("fail-device-disable");
    ASSERT_TRUE(service.computer().pressGpuKey());
    EXPECT_TRUE(waitForWindow("--graphics-disengaged-failed"));
    EXPECT_TRUE(gpu().started);
    EXPECT_EQ(service.computer().gpuReports().count, 1U);
    // Once it can be released again, the key works.
    service.repair();
    ASSERT_TRUE(service.computer().pressGpuKey());
    EXPECT_TRUE(waitForReport(2));
    EXPECT_FALSE(gpu().started);
}

TEST_F(GraphicsBox, PopupsAreLeftToTheClientApplicationWhileItRuns)
{
    const QString application = service.path("Tarn.exe");
    ASSERT_TRUE(QFile::copy(tarnTest::builtProgram("tarnsim"), application));
    QProcess running;
    running.start(
        application, {"--state", service.path("function/simulated_computer.state"), "log", "--follow"});
    ASSERT_TRUE(running.waitForStarted());
    changeGpu([](auto &changed) { changed.description = "Microsoft Basic Display Adapter"; });
    plugIn();
    EXPECT_TRUE(waitForReport(1));
    EXPECT_TRUE(service.waitForLog("Tarn.exe is running, don't shou the driver error popup."));
    EXPECT_EQ(desktop().windowsShown(), 0U);
    running.kill();
    EXPECT_TRUE(tarnTest::waitForEnd(running, 30000));
}

TEST_F(GraphicsBox, WhileAQuestionIsOpenOnlyTheEcWaits)
{
    plugInAndActivate();
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    ASSERT_TRUE(service.computer().pressGpuKey());
    ASSERT_TRUE(waitForWindow("--disengaged-graphics"));

    // What needs no EC is answered, what needs it waits.
    EXPECT_EQ(client.answer("getAccessoryType"), "graphics");
    EXPECT_EQ(client.answer("getTarnBatteryNum"), "80");
    EXPECT_TRUE(client.ask({{"cmd", "getHardwareVersion"}}, 1500).isEmpty());
    client.leave();
    ASSERT_TRUE(service.waitForLog("Tarn pipe client is exit!"));

    // A client that comes back gets what has been queued for it.
    tarnTest::ServiceClient again;
    ASSERT_TRUE(again.connectToService());
    desktop().setAnswer(1);
    EXPECT_TRUE(again.waitForNotification("disengagedGraphics", ""));
    EXPECT_TRUE(waitUntil(
        [&] { return again.documents().join('\n').contains(R"("cmd":"getHardwareVersion","data":"5")"); },
        30000));
    EXPECT_EQ(reported(), notStarted);
}

TEST_F(GraphicsBox, AQuestionGoesWithTheService)
{
    plugInAndActivate();
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    ASSERT_TRUE(service.computer().pressGpuKey());
    expectWindowToGoWithTheService("--disengaged-graphics");
    ASSERT_TRUE(service.start()); // for the end of the test
}

TEST_F(GraphicsBox, AQuestionGoesWithAServiceThatIsKilled)
{
    plugInAndActivate();
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    ASSERT_TRUE(service.computer().pressGpuKey());
    expectWindowToGoWithAKilledService("--disengaged-graphics");
    ASSERT_TRUE(service.start());
}

TEST_F(GraphicsBox, PopupsGoWithTheService)
{
    changeGpu([](auto &changed) { changed.problem = failedPostStart; });
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    plugIn();
    EXPECT_TRUE(waitForReport(1));
    EXPECT_EQ(reported(), notStarted);
    expectWindowToGoWithTheService("--graphics-patch-error");
    ASSERT_TRUE(service.start());
    // This one came with the start.
    expectWindowToGoWithAKilledService("--graphics-patch-error");
    ASSERT_TRUE(service.start());
}

TEST_F(GraphicsBox, AStopDuringTheResetOfTheSoundLeavesNoDeviceSwitchedOff)
{
    for (const char *name : {"audio", "gpu-audio"}) {
        const auto slot = *service.computer().devices().find(name);
        tarnSimulator::Device changed = service.computer().devices().device(slot);
        changed.started = false;
        changed.problem = failedStart;
        service.computer().devices().store(slot, changed);
    }
    plugIn();
    ASSERT_TRUE(service.waitForLog("High Definition Audio Device has a problem, disabling and re-enabling."));
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(service.stop(), 0);
    EXPECT_LT(time.elapsed(), tarnTest::allowedMs(3000));
    EXPECT_TRUE(service.log().contains("High Definition Audio Device has been reset."));
    for (const char *name : {"audio", "gpu-audio"})
        EXPECT_NE(service.computer().devices().device(*service.computer().devices().find(name)).problem,
            disabledDevice)
            << name;
    ASSERT_TRUE(service.start()); // for the end of the test
}

class GraphicsBoxOfAService : public GraphicsBox
{
protected:
    void SetUp() override
    {
        desktop().setServiceSession(true);
        GraphicsBox::SetUp();
    }
    void TearDown() override
    {
        GraphicsBox::TearDown();
        if (isCutShort)
            return;
        // Where the calls of Windows are noted: all that was opened for a window has been closed.
        const QByteArray calls = service.read("calls.txt");
        for (const char *kind : {"user token", "token copy", "process", "thread"})
            EXPECT_EQ(calls.count(QByteArray("opened ") + kind), calls.count(QByteArray("closed ") + kind))
                << kind;
    }
    bool isCutShort = false;
};

TEST_F(GraphicsBoxOfAService, AsksTheUserAtTheConsole)
{
    plugInAndActivate();
    desktop().setAnswer(2);
    ASSERT_TRUE(service.computer().pressGpuKey());
    EXPECT_TRUE(service.waitForLog("GraphicsActive_log & GraphicsDisengaged_log: exit code: 2"));
    EXPECT_TRUE(gpu().started);

    desktop().setAnswer(1);
    ASSERT_TRUE(service.computer().pressGpuKey());
    EXPECT_TRUE(client.waitForNotification("disengagedGraphics", ""));
    EXPECT_TRUE(waitForReport(2));
    EXPECT_FALSE(gpu().started);
    EXPECT_FALSE(service.log().contains("Debug or Release mode"));
}

TEST_F(GraphicsBoxOfAService, TakesFailedLaunchesForANo)
{
    plugInAndActivate();
    const std::pair<const char *, const char *> steps[] = {{"no-console-session", "No active session found"},
        {"no-user-token", "Failed to query user token"}, {"no-token-copy", "Failed to duplicate token"},
        {"no-gui-process", "Failed to create process"}, {"no-gui-exit-code", "Failed to get exit code"}};
    int answered = 0;
    for (const auto &[fault, text] : steps) {
        service.breakDown(fault);
        ASSERT_TRUE(service.computer().pressGpuKey());
        EXPECT_TRUE(service.waitForLog("GraphicsDisengaged_log: click no when second check.", ++answered))
            << fault;
        EXPECT_TRUE(
            service.log().contains(QString("GraphicsActive_log & GraphicsDisengaged_log: %1").arg(text)))
            << fault;
        service.repair();
    }
    EXPECT_TRUE(gpu().started);
}

TEST_F(GraphicsBoxOfAService, PopupsHoldTheEcUntilTheyAreClosed)
{
    changeGpu([](auto &changed) { changed.problem = failedAdd; });
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    plugIn();
    EXPECT_TRUE(waitForWindow("--graphics-patch-error"));
    EXPECT_EQ(service.computer().gpuReports().count, 0U);
    desktop().setAnswer(0);
    EXPECT_TRUE(waitForReport(1));
    EXPECT_EQ(reported(), notStarted);
}

TEST_F(GraphicsBoxOfAService, AQuestionGoesWithAServiceThatIsKilled)
{
    plugInAndActivate();
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    ASSERT_TRUE(service.computer().pressGpuKey());
    expectWindowToGoWithAKilledService("--disengaged-graphics");
    isCutShort = true;
    ASSERT_TRUE(service.start()); // for the end of the test
}

TEST_F(GraphicsBoxOfAService, PopupsGoWithTheService)
{
    changeGpu([](auto &changed) { changed.problem = failedAdd; });
    desktop().setAnswer(tarnSimulator::Desktop::waits);
    plugIn();
    expectWindowToGoWithTheService("--graphics-patch-error");
    isCutShort = true; // the thread that waited for it was not waited for
    desktop().setAnswer(0); // it comes again with the next start
    ASSERT_TRUE(service.start());
}

using GraphicsLight = GraphicsBox;

TEST_F(GraphicsLight, HasItsColourAgainAfterARestart)
{
    plugInAndActivate();
    EXPECT_EQ(client.answer("setGraphicsRGB", "purplishred"), "successed");
    EXPECT_EQ(client.answer("setGraphicsRGB", "shutdown"), "successed");
    EXPECT_EQ(service.stop(), 0);
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.answer("setGraphicsRGB", "on"), "purplishred successed");
    EXPECT_EQ(service.computer().graphicsLight().toWord(), 0xFF00FFU);
}
