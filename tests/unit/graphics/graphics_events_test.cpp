#include "graphics_fixture.h"

#include "graphics/keyboard_listener.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnSimulator::Fault;

namespace {

constexpr char eventPrefix[] = "GraphicsActive_log & GraphicsDisengaged_log: ";

} // namespace

class GraphicsEvents : public tarnTest::GraphicsTest
{ };

TEST_F(GraphicsEvents, AreReadAndAcknowledged)
{
    manager->handleEcAppEvent();
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 04A4 00", "40 W 04A4 00"}));
    EXPECT_TRUE(machine.log.lines().isEmpty());
}

TEST_F(GraphicsEvents, OfOtherCodesAreIgnored)
{
    present(0x14, 0xFF);
    EXPECT_EQ(machine.traffic(), QStringList({"R 04A4 14", "W 04A4 00"}));
    EXPECT_TRUE(machine.log.lines().isEmpty());
}

TEST_F(GraphicsEvents, ThatCannotBeReadAreGivenUp)
{
    machine.faults().switchOn(Fault::FailRead, XEC_APP_EVENT);
    manager->handleEcAppEvent();
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.log.lines().last(),
        QString("%1read ecappevent from xdata when read graphics disengaged signal form ec failed.")
            .arg(eventPrefix));
}

TEST_F(GraphicsEvents, ThatCannotBeAcknowledgedAreHandledAllTheSame)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_APP_EVENT);
    present(APP_EVENT_GRAPHICS_CONNECTED);
    EXPECT_TRUE(machine.log.contains(QString("%1Failed to write 0 to XEC_APP_EVENT. ").arg(eventPrefix)));
    EXPECT_TRUE(device("gpu").started);
}

TEST_F(GraphicsEvents, TheKeyIsIgnoredBeforeAnActivation)
{
    present(APP_EVENT_GPU_KEY, APP_EVENT_DATA_DISENGAGE);
    EXPECT_EQ(machine.traffic(), QStringList({"R 04A4 11", "W 04A4 00"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {QString("%1ignore disengaged signal, gpu is still connection after ban it.").arg(eventPrefix)}));
}

TEST_F(GraphicsEvents, AConnectionActivates)
{
    present(APP_EVENT_GRAPHICS_CONNECTED);
    EXPECT_EQ(machine.log.lines().mid(0, 2),
        QStringList({QString("%1ecAppEvent is 0x12.").arg(eventPrefix),
            "GraphicsActive_log: Received graphics connected signal, begin active process."}));
    EXPECT_EQ(machine.traffic(), QStringList({"R 04A4 12", "W 04A4 00", "W 04B1 07", "W 04B0 10"}));
}

TEST_F(GraphicsEvents, ABanDisablesWithoutAQuestionOrAReport)
{
    setCondition("gpu", true, noProblem);
    const tarnTest::QueueMark queue;
    present(APP_EVENT_BAN_GPU);
    EXPECT_EQ(machine.traffic(), QStringList({"R 04A4 13", "W 04A4 00"}));
    EXPECT_EQ(queue.added(), QStringList({tarnTest::notification("disengagedGraphics", "")}));
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {QString("%1ecAppEvent is 0x13.").arg(eventPrefix), "GraphicsDisengaged_log: begin to ban gpu.",
                "GraphicsDisengaged_log: Disabled 4060 series GPU at index 1",
                "GraphicsDisengaged_log: ban gpu successed."}));
    EXPECT_FALSE(device("gpu").started);
    EXPECT_TRUE(session.shown.isEmpty());
}

TEST_F(GraphicsEvents, ABanMayFail)
{
    setCondition("gpu", true, noProblem);
    fail(Fault::FailDeviceDisable, "gpu");
    manager->banGpu();
    EXPECT_EQ(machine.log.lines().last(), "W: GraphicsDisengaged_log: ban gpu failed.");
}

TEST_F(GraphicsEvents, ABanEndsTheActivation)
{
    manager->handleGraphicsConnectSignal();
    manager->banGpu();
    forgetPast();
    present(APP_EVENT_GPU_KEY, APP_EVENT_DATA_DISENGAGE);
    EXPECT_EQ(machine.log.lines().size(), 1);
    EXPECT_TRUE(machine.log.lines().first().contains("ignore disengaged signal"));
}

TEST_F(GraphicsEvents, ABanBeforeAnUpdateSendsNoNotification)
{
    setCondition("gpu", true, noProblem);
    const tarnTest::QueueMark queue;
    manager->banGpuForMcuUpdate();
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({3000}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"GraphicsDisengaged_log: begin to ban gpu for mcu update.",
            "GraphicsDisengaged_log: Disabled 4060 series GPU at index 1",
            "GraphicsDisengaged_log: ban gpu successed for mcu update."}));
    EXPECT_TRUE(queue.added().isEmpty());
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(GraphicsEvents, ABanBeforeAnUpdateDoesNotWaitForTheEc)
{
    setCondition("gpu", true, noProblem);
    ASSERT_TRUE(ecAccessMutex.lock());
    manager->banGpuForMcuUpdate();
    EXPECT_TRUE(ecAccessMutex.isLocked());
    ecAccessMutex.unlock();
    EXPECT_FALSE(device("gpu").started);
}

TEST_F(GraphicsEvents, ABanBeforeAnUpdateMayFail)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    manager->banGpuForMcuUpdate();
    EXPECT_EQ(machine.log.lines().last(), "W: GraphicsDisengaged_log: ban gpu failed for mcu update.");
}

TEST_F(GraphicsEvents, TheSignalOfTheKeyAsksForNothing)
{
    manager->handleGraphicsDisengagedSignal();
    EXPECT_EQ(machine.log.lines(),
        QStringList({"Received graphics disengaged signal, begin disengagement process."}));
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(GraphicsEvents, TheSlotsAndSignalsHaveTheirNames)
{
    const QMetaObject &meta = GraphicsAccessoryManager::staticMetaObject;
    for (const char *name :
        {"gpuActiveProcessFirst()", "handleGraphicsDisengagedSignal()", "handleGraphicsConnectSignal()"})
        EXPECT_GE(meta.indexOfSlot(name), 0) << name;
    EXPECT_GE(
        tarnAccessoryManager::KeyboardListener::staticMetaObject.indexOfSignal("graphicsDisengagedSignal()"),
        0);
}
