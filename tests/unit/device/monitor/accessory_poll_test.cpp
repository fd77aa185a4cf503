#include "device/monitor/ec_dirver_reader.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

using namespace tarnDeviceInfos;
using tarnTest::notification;
using tarnTest::QueueMark;

namespace {

QString changeTo(const char *name)
{
    return notification("changeAccessoryType", name);
}

} // namespace

class AccessoryPoll : public tarnTest::MachineTest
{
protected:
    AccessoryPoll()
    {
        EcDirverControllerHal::instance();
        reader = EcDirverReader::instance();
        tarnPipeServer::SendQueueThread::instance();
        machine.log.clear();
    }

    void link(int status, int code = 0)
    {
        machine.state->xdata[MCU_LINK_STATUS] = static_cast<std::uint8_t>(status);
        machine.state->xdata[ACCESSORY_CODE] = static_cast<std::uint8_t>(code);
    }

    // Lines and messages of one poll in this state.
    QStringList poll(int status, int code = 0)
    {
        link(status, code);
        machine.log.clear();
        const QueueMark mark;
        reader->pollAccessory();
        messages = mark.added();
        return machine.log.lines();
    }

    EcDirverReader *reader;
    QStringList messages;
};

TEST_F(AccessoryPoll, SaysNothingWhileNothingIsAttached)
{
    EXPECT_TRUE(poll(0).isEmpty());
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 06A0 00"}));
}

struct Attached
{
    int code;
    QStringList lines;
    const char *name;
};

class AccessoryPollOf : public AccessoryPoll, public ::testing::WithParamInterface<Attached>
{ };

INSTANTIATE_TEST_SUITE_P(Accessories, AccessoryPollOf,
    ::testing::Values(Attached {1, {"Accessory is connected.", "now Accessory is dock"}, "dock"},
        Attached {2, {"Accessory is connected.", "now Accessory is graphics"}, "graphics"},
        Attached {3, {"Accessory is connected.", "now Accessory is graphics"}, "graphics"},
        Attached {4, {"Accessory is connected.", "now Accessory is k_vane"}, "k_vane"}));

TEST_P(AccessoryPollOf, AnnouncesTheAccessoryOnceAndItsLeaveOnce)
{
    const QStringList lines = poll(MCU_LINKED, GetParam().code);
    EXPECT_EQ(lines.mid(lines.indexOf("Accessory is connected."), 2), GetParam().lines);
    EXPECT_EQ(messages, QStringList({changeTo(GetParam().name)}));
    EXPECT_EQ(reader->accessoryKind(), GetParam().code);
    EXPECT_EQ(reader->accessoryName(), GetParam().name);

    EXPECT_TRUE(poll(MCU_LINKED, GetParam().code).isEmpty());
    EXPECT_TRUE(messages.isEmpty());

    EXPECT_EQ(poll(0), QStringList({"Accessory is disconnected."}));
    EXPECT_EQ(messages, QStringList({changeTo("disconnected")}));
    EXPECT_EQ(reader->accessoryName(), "disconnected");

    EXPECT_TRUE(poll(0).isEmpty());
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(AccessoryPoll, ReadsTheCodeOnlyBehindALink)
{
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 06A0 04", "40 R 06A6 01"}));
}

TEST_F(AccessoryPoll, ActivatesTheGraphicsBoxAfterTellingTheClient)
{
    poll(MCU_LINKED, ACCESSORY_GRAPHICS_16G);
    EXPECT_TRUE(machine.log.contains(
        "GraphicsActive_log: Received graphics connected signal, begin active process."));
}

TEST_F(AccessoryPoll, TellsTheClientBeforeTheGraphicsBoxTakesItsTime)
{
    QStringList toldBefore;
    machine.clock.onWait = [&toldBefore](tarnTest::milliseconds duration) {
        if (duration == std::chrono::seconds(3)) // the box settles
            toldBefore << tarnTest::queuedMessages();
    };
    poll(MCU_LINKED, ACCESSORY_GRAPHICS);
    EXPECT_EQ(toldBefore, QStringList({changeTo("graphics")}));
}

TEST_F(AccessoryPoll, AChangeBetweenTheTwoBoxesIsAChange)
{
    poll(MCU_LINKED, ACCESSORY_GRAPHICS);
    poll(MCU_LINKED, ACCESSORY_GRAPHICS_16G);
    EXPECT_EQ(messages, QStringList({changeTo("graphics")}));
    EXPECT_TRUE(machine.log.contains(
        "GraphicsActive_log: Received graphics connected signal, begin active process."));
    EXPECT_EQ(reader->accessoryKind(), ACCESSORY_GRAPHICS_16G);
}

TEST_F(AccessoryPoll, EveryChangeBetweenTwoAccessoriesIsAnnounced)
{
    const std::pair<int, const char *> kinds[] = {
        {1, "dock"}, {2, "graphics"}, {3, "graphics"}, {4, "k_vane"}};
    for (const auto &[from, fromName] : kinds) {
        for (const auto &[to, toName] : kinds) {
            poll(MCU_LINKED, from);
            poll(MCU_LINKED, to);
            EXPECT_EQ(messages, from == to ? QStringList() : QStringList({changeTo(toName)}))
                << from << " to " << to;
        }
    }
}

TEST_F(AccessoryPoll, KeepsAnUnknownCodeWithoutAnnouncingIt)
{
    EXPECT_EQ(poll(MCU_LINKED, 77), QStringList({"Accessory is connected."}));
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_EQ(reader->accessoryKind(), 77);
    EXPECT_EQ(reader->accessoryName(), "");
    EXPECT_TRUE(poll(MCU_LINKED, 77).isEmpty());
}

TEST_F(AccessoryPoll, AFailedLinkReadCountsAsDetached)
{
    poll(MCU_LINKED, ACCESSORY_DOCK);
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, MCU_LINK_STATUS);
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_EQ(messages, QStringList({changeTo("disconnected")}));
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_TRUE(messages.isEmpty());
    machine.faults().clear();
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_EQ(messages, QStringList({changeTo("dock")}));
}

// The value for a failed read differs from every status that can be read, also from that of no accessory.
TEST_F(AccessoryPoll, AFailedLinkReadIsAChangeThoughNothingIsAttached)
{
    poll(0);
    EXPECT_TRUE(messages.isEmpty());
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, MCU_LINK_STATUS);
    EXPECT_EQ(poll(0).last(), "Accessory is disconnected.");
    EXPECT_EQ(messages, QStringList({changeTo("disconnected")}));
    poll(0);
    EXPECT_TRUE(messages.isEmpty());
    machine.faults().clear();
    poll(0);
    EXPECT_EQ(messages, QStringList({changeTo("disconnected")}));
}

TEST_F(AccessoryPoll, AFailedCodeReadIsAnUnknownAccessory)
{
    poll(MCU_LINKED, ACCESSORY_DOCK);
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, ACCESSORY_CODE);
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_EQ(reader->accessoryKind(), 250);
    machine.faults().clear();
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_EQ(messages, QStringList({changeTo("dock")}));
}
