#include "device/monitor/ec_dirver_reader.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/accessory_table.h"
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

class AccessoryPollOf : public AccessoryPoll, public ::testing::WithParamInterface<AccessoryKind>
{ };

INSTANTIATE_TEST_SUITE_P(Accessories, AccessoryPollOf, ::testing::ValuesIn(accessoryTable));

TEST_P(AccessoryPollOf, AnnouncesTheAccessoryOnceAndItsLeaveOnce)
{
    const AccessoryKind &kind = GetParam();
    const QStringList lines = poll(MCU_LINKED, kind.code);
    EXPECT_EQ(lines.mid(lines.indexOf("Accessory is connected."), 2),
        QStringList({"Accessory is connected.", kind.foundAtChange}));
    EXPECT_EQ(messages, QStringList({changeTo(kind.name)}));
    EXPECT_EQ(reader->accessoryKind(), kind.code);
    EXPECT_EQ(reader->accessoryName(), kind.name);

    EXPECT_TRUE(poll(MCU_LINKED, kind.code).isEmpty());
    EXPECT_TRUE(messages.isEmpty());

    EXPECT_EQ(poll(0), QStringList({"Accessory is disconnected."}));
    EXPECT_EQ(messages, QStringList({changeTo("disconnected")}));
    EXPECT_EQ(reader->accessoryName(), "disconnected");

    EXPECT_TRUE(poll(0).isEmpty());
    EXPECT_TRUE(messages.isEmpty());
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
    for (const AccessoryKind &from : accessoryTable) {
        for (const AccessoryKind &to : accessoryTable) {
            poll(MCU_LINKED, from.code);
            poll(MCU_LINKED, to.code);
            EXPECT_EQ(messages, from.code == to.code ? QStringList() : QStringList({changeTo(to.name)}))
                << from.foundAtFirst << " to " << to.foundAtFirst;
        }
    }
}

TEST_F(AccessoryPoll, KeepsAnUnknownCodeWithoutAnnouncingIt)
{
    constexpr int unknown = 77;
    EXPECT_EQ(poll(MCU_LINKED, unknown), QStringList({"Accessory is connected."}));
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_EQ(reader->accessoryKind(), unknown);
    EXPECT_EQ(reader->accessoryName(), "");
    EXPECT_TRUE(poll(MCU_LINKED, unknown).isEmpty());
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
    constexpr int unreadCode = 250;
    poll(MCU_LINKED, ACCESSORY_DOCK);
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, ACCESSORY_CODE);
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_EQ(reader->accessoryKind(), unreadCode);
    machine.faults().clear();
    poll(MCU_LINKED, ACCESSORY_DOCK);
    EXPECT_EQ(messages, QStringList({changeTo("dock")}));
}
