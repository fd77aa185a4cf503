#include "pipe/tarn_pipe_server.h"

#include "device/ec_registers.h"
#include "device/monitor/accessory_table.h"
#include "device/monitor/ec_dirver_reader.h"
#include "support/simulated_machine.h"

using namespace tarnDeviceInfos;
using tarnPipeServer::TarnPipeServer;

class AccessoryCommands : public tarnTest::MachineTest
{
protected:
    static QString ask(const QByteArray &request) { return TarnPipeServer::instance()->dispatch(request); }
    static QString askFor(const char *command) { return ask(QByteArray("{\"cmd\":\"") + command + "\"}"); }
    static QString answer(const char *command, const char *data)
    {
        return QStringLiteral(R"({"cmd":"%1","data":"%2"})").arg(command, data);
    }

    void attach(int code)
    {
        machine.state->xdata[MCU_LINK_STATUS] = MCU_LINKED;
        machine.state->xdata[ACCESSORY_CODE] = static_cast<std::uint8_t>(code);
        EcDirverReader::instance()->getAccessoryTypeForFirst();
    }
};

TEST_F(AccessoryCommands, NameTheAccessory)
{
    EXPECT_EQ(askFor("getAccessoryType"), answer("getAccessoryType", "disconnected"));
    for (const AccessoryKind &kind : accessoryTable) {
        attach(kind.code);
        EXPECT_EQ(askFor("getAccessoryType"), answer("getAccessoryType", kind.name));
    }
    constexpr int unknown = 9;
    attach(unknown);
    EXPECT_EQ(askFor("getAccessoryType"), answer("getAccessoryType", ""));
}

TEST_F(AccessoryCommands, GiveVersionsAndCode)
{
    machine.state->xdata[MCU_VERSION_MAJOR] = 1;
    machine.state->xdata[MCU_VERSION_MINOR] = 2;
    machine.state->xdata[MCU_VERSION_PATCH] = 3;
    machine.state->xdata[HARDWARE_VERSION] = 5;
    machine.state->xdata[ACCESSORY_CODE] = ACCESSORY_KVANE;
    EXPECT_EQ(askFor("getMcuVersion"), answer("getMcuVersion", "1.23"));
    EXPECT_EQ(askFor("getHardwareVersion"), answer("getHardwareVersion", "5"));
    EXPECT_EQ(askFor("getAccessoryCode"), answer("getAccessoryCode", "4"));
    EXPECT_EQ(askFor("getMcuUpdateParameters"),
        R"({"accessoryCode":"4","cmd":"getMcuUpdateParameters","hardwareVer":"5","mcuVer":"1.23"})");
}

TEST_F(AccessoryCommands, AnswerWithNothingWhatTheEcDoesNotAnswer)
{
    machine.faults().switchOn(tarnSimulator::Fault::IbfStuck);
    EXPECT_EQ(askFor("getMcuVersion"), answer("getMcuVersion", ""));
    EXPECT_EQ(askFor("getMcuUpdateParameters"),
        R"({"accessoryCode":"","cmd":"getMcuUpdateParameters","hardwareVer":"","mcuVer":""})");
    machine.faults().clear();
    EXPECT_EQ(askFor("getHardwareVersion"), answer("getHardwareVersion", "0"));
}

TEST_F(AccessoryCommands, GiveWhatTheMonitorLastSent)
{
    constexpr const char *unread = "251";
    EXPECT_EQ(askFor("getKVaneLedLight"), answer("getKVaneLedLight", "0"));
    EXPECT_EQ(askFor("getKvaneChargingStatus"), answer("getKvaneChargingStatus", unread));
    EXPECT_EQ(askFor("getKvaneBatteryNum"), answer("getKvaneBatteryNum", unread));
    EXPECT_EQ(askFor("getTarnChargingStatus"), answer("getTarnChargingStatus", unread));
    EXPECT_EQ(askFor("getTarnBatteryNum"), answer("getTarnBatteryNum", unread));

    machine.state->accessory.kvaneLed = 3;
    machine.state->xdata[EC_KVANE_CHARGING_STATUS] = 2;
    machine.state->xdata[EC_KVANE_BATTERY_NUM] = 44;
    machine.state->xdata[EC_TARN_CHARGING_STATUS] = 1;
    machine.state->xdata[EC_TARN_BATTERY_NUM] = 66;
    attach(ACCESSORY_KVANE);
    machine.traffic();
    EXPECT_EQ(askFor("getKVaneLedLight"), answer("getKVaneLedLight", "3"));
    EXPECT_EQ(askFor("getKvaneChargingStatus"), answer("getKvaneChargingStatus", "1"));
    EXPECT_EQ(askFor("getKvaneBatteryNum"), answer("getKvaneBatteryNum", "44"));
    EXPECT_EQ(askFor("getTarnChargingStatus"), answer("getTarnChargingStatus", "1"));
    EXPECT_EQ(askFor("getTarnBatteryNum"), answer("getTarnBatteryNum", "66"));
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(AccessoryCommands, GiveTheSerialNumber)
{
    machine.attach(ACCESSORY_KVANE);
    const std::uint8_t bytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD};
    std::copy(std::begin(bytes), std::end(bytes), machine.state->accessory.kvaneSerialNumber.begin());
    EXPECT_EQ(askFor("getTarnKvaneSnCode"), answer("getTarnKvaneSnCode", "CDAB8967452301"));
}

TEST_F(AccessoryCommands, SetTheKVanesLightAndEchoTheRequest)
{
    machine.attach(ACCESSORY_KVANE);
    EXPECT_EQ(ask(R"({"cmd":"setKVaneLedLight","data":"7"})"), R"({"cmd":"setKVaneLedLight","data":"7"})");
    EXPECT_EQ(machine.state->accessory.kvaneLed, 7);
    EXPECT_EQ(
        ask(R"({"cmd":"setKVaneLedLight","data":"abc"})"), R"({"cmd":"setKVaneLedLight","data":"abc"})");
    EXPECT_EQ(machine.state->accessory.kvaneLed, 0);
}

TEST_F(AccessoryCommands, TakeTheKVanesLightAsADecimalNumberOfWhichTheLowestByteCounts)
{
    machine.attach(ACCESSORY_KVANE);
    const std::pair<const char *, int> lights[] = {{"010", 10}, {"0x10", 0}, {"255", 255}, {"256", 0},
        {"300", 44}, {"-1", 255}, {"-200", 56}, {"+5", 5}, {"2147483647", 255}, {"2147483648", 0}, {"1e1", 0},
        {"7.5", 0}, {"", 0}};
    for (const auto &[text, light] : lights) {
        machine.state->accessory.kvaneLed = 99;
        const QByteArray request = QByteArray(R"({"cmd":"setKVaneLedLight","data":")") + text + R"("})";
        EXPECT_EQ(ask(request), QString(request));
        EXPECT_EQ(machine.state->accessory.kvaneLed, light) << text;
    }
}

// Only text is a number here.
TEST_F(AccessoryCommands, TakeALightThatIsNoTextForNone)
{
    machine.attach(ACCESSORY_KVANE);
    for (const char *data : {"7", "true", "null", "[7]"}) {
        machine.state->accessory.kvaneLed = 99;
        const QByteArray request = QByteArray(R"({"cmd":"setKVaneLedLight","data":)") + data + "}";
        EXPECT_EQ(ask(request), QString(request));
        EXPECT_EQ(machine.state->accessory.kvaneLed, 0) << data;
    }
}
