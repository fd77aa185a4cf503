#include "device/monitor/ec_dirver_reader.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/accessory_table.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

using namespace tarnDeviceInfos;
using tarnTest::milliseconds;
using tarnTest::notification;
using tarnTest::queuedMessages;
using tarnTest::QueueMark;

namespace {

constexpr int notLinked = 3; // a link status
constexpr int unknownCode = 9;
constexpr int unknownKind = 251;
constexpr int unsent = 251;

const QString enterLine = QStringLiteral("getAccessoryTypeForFirst Enter |");
const QString leaveLine = QStringLiteral("getAccessoryTypeForFirst Leave |");

} // namespace

class FirstDetection : public tarnTest::MachineTest
{
protected:
    FirstDetection()
    {
        EcDirverControllerHal::instance();
        machine.state->xdata[EC_TARN_CHARGING_STATUS] = 0x03;
        machine.state->xdata[EC_TARN_BATTERY_NUM] = 77;
        reader = EcDirverReader::instance();
        EXPECT_TRUE(machine.log.lines().contains("EcDirverReader object is Created!"));
        machine.log.clear();
    }

    void attach(int linkStatus, int code)
    {
        machine.state->xdata[MCU_LINK_STATUS] = static_cast<std::uint8_t>(linkStatus);
        machine.state->xdata[ACCESSORY_CODE] = static_cast<std::uint8_t>(code);
    }

    // The notifications of the host's own values, which come in any case.
    static QStringList hostMessages()
    {
        return {notification("getTarnChargingStatus", "1"), notification("getTarnBatteryNum", "77")};
    }

    EcDirverReader *reader;
};

TEST_F(FirstDetection, FindsNothingAttached)
{
    attach(notLinked, ACCESSORY_DOCK); // a code without the link counts for nothing
    reader->getAccessoryTypeForFirst();
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 0570 03", "40 R 050F 4D", "60 R 06A0 03"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({enterLine, "KvaneAccessoryManager object is created.", "SendQueueThread is creat!",
            "getAccessoryTypeForFirst mcuLinkStatus:  3", "Connected without accessory!", leaveLine}));
    EXPECT_EQ(queuedMessages(), hostMessages());
    EXPECT_EQ(reader->accessoryKind(), ACCESSORY_NONE);
    EXPECT_EQ(reader->accessoryName(), "disconnected");
    EXPECT_EQ(reader->sentTarnChargingStatus(), 1);
    EXPECT_EQ(reader->sentTarnBatteryNum(), 77);
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

struct Found
{
    int code;
    QString line;
    const char *name;
    int kind;
};

namespace {

std::vector<Found> foundAtFirst()
{
    std::vector<Found> rows;
    for (const AccessoryKind &kind : accessoryTable)
        rows.push_back({kind.code, kind.foundAtFirst, kind.name, kind.code});
    for (const int code : {int(ACCESSORY_NONE), unknownCode})
        rows.push_back({code, QString("Unknown accessory:  %1").arg(code), "", unknownKind});
    return rows;
}

} // namespace

class FirstDetectionOf : public FirstDetection, public ::testing::WithParamInterface<Found>
{ };

INSTANTIATE_TEST_SUITE_P(Accessories, FirstDetectionOf, ::testing::ValuesIn(foundAtFirst()));

TEST_P(FirstDetectionOf, NamesTheAccessoryWithoutTellingTheClient)
{
    attach(MCU_LINKED, GetParam().code);
    reader->getAccessoryTypeForFirst();
    const QStringList lines = machine.log.lines();
    const auto at = lines.indexOf("getAccessoryTypeForFirst mcuLinkStatus:  4");
    ASSERT_GE(at, 0);
    EXPECT_EQ(lines.mid(at + 1, 2), QStringList({"Connected with accessory!", GetParam().line}));
    EXPECT_EQ(lines.last(), leaveLine);
    EXPECT_EQ(reader->accessoryKind(), GetParam().kind);
    EXPECT_EQ(reader->accessoryName(), GetParam().name);
    EXPECT_TRUE(queuedMessages().filter("changeAccessoryType").isEmpty());
    EXPECT_EQ(queuedMessages().mid(0, 2), hostMessages());
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

TEST_F(FirstDetection, StartsTheGraphicsBox)
{
    attach(MCU_LINKED, ACCESSORY_GRAPHICS);
    reader->getAccessoryTypeForFirst();
    EXPECT_TRUE(machine.log.contains("GraphicsActive_log: Gpu has connected when app begin to run."));
}

TEST_F(FirstDetection, AnnouncesAllFiveValuesOfAKVane)
{
    attach(MCU_LINKED, ACCESSORY_KVANE);
    machine.state->accessory.kvaneLed = 6;
    machine.state->xdata[EC_KVANE_CHARGING_STATUS] = 0x02;
    machine.state->xdata[EC_KVANE_BATTERY_NUM] = 55;
    reader->getAccessoryTypeForFirst();
    // Ten milliseconds pass between the light's command and its value.
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 R 0570 03", "40 R 050F 4D", "60 R 06A0 04", "80 R 06A6 04", "100 W 04B0 15",
            "130 R 04B1 06", "150 R 06CC 02", "170 R 06CD 37", "190 R 0570 03", "210 R 050F 4D"}));
    EXPECT_EQ(queuedMessages(),
        hostMessages()
            + QStringList({notification("getKVaneLedLight", "6"), notification("getKvaneChargingStatus", "1"),
                notification("getKvaneBatteryNum", "55"), notification("getTarnChargingStatus", "1"),
                notification("getTarnBatteryNum", "77")}));
    EXPECT_EQ(reader->sentKVaneLedLight(), 6);
    EXPECT_EQ(reader->sentKvaneChargingStatus(), 1);
    EXPECT_EQ(reader->sentKvaneBatteryNum(), 55);
}

TEST_F(FirstDetection, HoldsTheEcFromItsFirstReadToItsLast)
{
    for (const int code : {ACCESSORY_DOCK, ACCESSORY_GRAPHICS, ACCESSORY_KVANE}) {
        attach(MCU_LINKED, code);
        std::vector<int> waits;
        int waitsWithoutTheEc = 0;
        machine.clock.onWait = [&](milliseconds duration) {
            waits.push_back(static_cast<int>(duration.count()));
            waitsWithoutTheEc += ecAccessMutex.isLocked() ? 0 : 1;
        };
        reader->getAccessoryTypeForFirst();
        machine.clock.onWait = nullptr;
        EXPECT_GE(waits.size(), 16U) << code;
        EXPECT_EQ(std::count(waits.begin(), waits.end(), 3000), code == ACCESSORY_GRAPHICS ? 1 : 0) << code;
        EXPECT_EQ(waitsWithoutTheEc, 0) << code;
        EXPECT_FALSE(ecAccessMutex.isLocked()) << code;
    }
}

TEST_F(FirstDetection, ForgetsTheLinkStatusOfNoAccessory)
{
    attach(notLinked, ACCESSORY_NONE);
    reader->getAccessoryTypeForFirst();
    const QueueMark mark;
    reader->pollAccessory();
    // A status other than the initial one is a change, although nothing was attached before.
    EXPECT_EQ(mark.added(), QStringList({notification("changeAccessoryType", "disconnected")}));
    reader->pollAccessory();
    EXPECT_EQ(mark.added().size(), 1);
}

TEST_F(FirstDetection, StartsFromItsSentinels)
{
    EXPECT_EQ(reader->sentKVaneLedLight(), 0);
    EXPECT_EQ(reader->sentKvaneChargingStatus(), unsent);
    EXPECT_EQ(reader->sentKvaneBatteryNum(), unsent);
    EXPECT_EQ(reader->sentTarnChargingStatus(), unsent);
    EXPECT_EQ(reader->sentTarnBatteryNum(), unsent);
    EXPECT_EQ(reader->accessoryKind(), ACCESSORY_NONE);
    EXPECT_FALSE(reader->isEcUpdating());
}

TEST_F(FirstDetection, ReportsFallbacksWhenTheHostsValuesCannotBeRead)
{
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, EC_TARN_BATTERY_NUM);
    reader->getAccessoryTypeForFirst();
    EXPECT_EQ(queuedMessages(),
        QStringList({notification("getTarnChargingStatus", "1"), notification("getTarnBatteryNum", "255")}));
}

TEST_F(FirstDetection, AnUnreadableLinkCountsAsNothingAttached)
{
    attach(MCU_LINKED, ACCESSORY_DOCK);
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, MCU_LINK_STATUS);
    reader->getAccessoryTypeForFirst();
    EXPECT_TRUE(machine.log.contains("getAccessoryTypeForFirst mcuLinkStatus:  0"));
    EXPECT_TRUE(machine.log.contains("Connected without accessory!"));
}

TEST_F(FirstDetection, AnUnreadableCodeIsAnUnknownAccessory)
{
    attach(MCU_LINKED, ACCESSORY_DOCK);
    machine.faults().switchOn(tarnSimulator::Fault::FailRead, ACCESSORY_CODE);
    reader->getAccessoryTypeForFirst();
    EXPECT_TRUE(machine.log.contains("Unknown accessory:  0"));
    EXPECT_EQ(reader->accessoryKind(), unknownKind);
}

TEST_F(FirstDetection, DoesNothingOnceTheLockIsReleasedForTheEnd)
{
    ecAccessMutex.releaseWaiters();
    reader->getAccessoryTypeForFirst();
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.log.lines(), QStringList({enterLine}));
}
