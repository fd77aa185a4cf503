#include "recorded_machine.h"

#include "accessory/dock_accessory_manager.h"
#include "accessory/ec_power_mode_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "support/printing.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::DockAccessoryManager;
using tarnAccessoryManager::EcPowerModeManager;
using tarnAccessoryManager::KvaneAccessoryManager;
using tarnSimulator::Fault;

namespace {

// The service's own driver makes the recordings.
class ComparisonOf : public tarnSimulatorTest::ComparedRecording
{
protected:
    ComparisonOf() { EcDirverControllerHal::instance(); }

    static int readRegister(std::uint16_t address)
    {
        std::uint8_t value = 0;
        return EcDirverControllerHal::instance()->readXdata(address, &value) == 0 ? value : -1;
    }
    static void writeRegister(std::uint16_t address, std::uint8_t value)
    {
        EXPECT_EQ(EcDirverControllerHal::instance()->writeXdata(address, value), 0);
    }
    static void seeAccessory() { EcDirverReader::instance()->pollAccessory(); }
};

QString valueLine(const char *name, const char *is, const char *expected)
{
    return QStringLiteral("%1 is %2, expected %3").arg(name, is, expected);
}

const char *const pl1Check = "0x04AB EC_POWERMODE_PL1_CHECK";

} // namespace

TEST_F(ComparisonOf, NothingComparesNothing)
{
    compare();
    EXPECT_EQ(compared, 0u);
    EXPECT_EQ(all(), QStringList());
}

TEST_F(ComparisonOf, FirstValuesComparesNothing)
{
    machine.computer.poke(EC_FAN_MODE, 7);
    machine.computer.pokeEeprom(EEP_SMART_CHARGING, 0x12);
    readRegister(EC_FAN_MODE);
    readRegister(EC_TARN_BATTERY_NUM);
    readRegister(MCU_LINK_STATUS);
    readRegister(XEC_APP_EVENT);
    compare();
    EXPECT_EQ(compared, 0u);
    EXPECT_EQ(all(), QStringList());
}

TEST_F(ComparisonOf, AKeptRegisterFindsAnotherValue)
{
    writeRegister(EC_FAN_MODE, 1);
    EXPECT_EQ(readRegister(EC_FAN_MODE), 1);
    machine.computer.poke(EC_FAN_MODE, 0);
    readRegister(EC_FAN_MODE);
    readRegister(EC_FAN_MODE);
    compare();
    EXPECT_EQ(compared, 3u);
    EXPECT_EQ(all(), QStringList(valueLine("0x046E EC_FAN_MODE", "0x00 (0)", "0x01 (1)") + " x2"));
    EXPECT_EQ(wrong.size(), 1);
}

TEST_F(ComparisonOf, AKeptRegisterFindsAChangeOfWhatWasReadFirst)
{
    readRegister(EC_TARN_POWER_MODE);
    machine.computer.poke(EC_TARN_POWER_MODE, TARN_POWER_MODE_HIGH);
    readRegister(EC_TARN_POWER_MODE);
    compare();
    EXPECT_EQ(wrong, QStringList(valueLine("0x04FE EC_TARN_POWER_MODE", "0x04 (4)", "0x01 (1)")));
}

TEST_F(ComparisonOf, AMeasurementIsOfItsOwnKindAndAdopted)
{
    readRegister(EC_TARN_BATTERY_NUM);
    machine.computer.setHostBattery(79);
    readRegister(EC_TARN_BATTERY_NUM);
    readRegister(EC_TARN_BATTERY_NUM);
    machine.computer.setPowerSupplyMode(2);
    readRegister(EC_POWER_SUPPLY_MODE);
    compare();
    EXPECT_EQ(measured, QStringList(valueLine("0x050F EC_TARN_BATTERY_NUM", "0x4F (79)", "0x50 (80)")));
    EXPECT_EQ(all(), measured);
    EXPECT_EQ(compared, 2u);
}

TEST_F(ComparisonOf, LimitsInForceAreJudgedByWhatTheHostWrote)
{
    EcPowerModeManager *const manager = EcPowerModeManager::instance();
    EXPECT_EQ(manager->setEcPowerCtrlMode(PL_CTRL_MANUAL), 0);
    EXPECT_EQ(manager->setEcPowerModeHigh(), 0);
    compare();
    EXPECT_EQ(all(), QStringList());
    EXPECT_GE(compared, 4u);
    machine.faults().switchOn(Fault::ReadbackOffset, -11);
    EXPECT_EQ(manager->setEcPowerModeHigh(), -1);
    EXPECT_EQ(manager->setEcPowerModeHigh(), -1);
    compare();
    EXPECT_EQ(wrong.size(), 1);
    EXPECT_TRUE(wrong.value(0).startsWith(pl1Check)) << wrong.value(0).toStdString();
    EXPECT_TRUE(wrong.value(0).endsWith(" x2"));
}

TEST_F(ComparisonOf, LimitsThatTheEcChoosesAreMeasurements)
{
    EXPECT_EQ(EcPowerModeManager::instance()->setEcPowerCtrlMode(PL_CTRL_AUTO), 0);
    machine.computer.poke(EC_POWERMODE_PL1_CHECK, 33);
    readRegister(EC_POWERMODE_PL1_CHECK);
    compare();
    EXPECT_EQ(all(), QStringList());
    machine.computer.poke(EC_POWERMODE_PL1_CHECK, 34);
    readRegister(EC_POWERMODE_PL1_CHECK);
    compare();
    EXPECT_EQ(all(), QStringList(valueLine(pl1Check, "0x22 (34)", "0x21 (33)")));
    EXPECT_EQ(measured, all());
}

TEST_F(ComparisonOf, AColourIsReadAsItWasWritten)
{
    machine.attach(ACCESSORY_DOCK);
    seeAccessory();
    DockAccessoryManager *const dock = DockAccessoryManager::instance();
    EXPECT_EQ(dock->setDockLedStatus(1), 0);
    EXPECT_EQ(dock->getDockLedStatus(), 1);
    seeAccessory();
    compare();
    EXPECT_EQ(all(), QStringList());
    machine.computer.setDockLight({});
    EXPECT_EQ(dock->getDockLedStatus(), 0);
    compare();
    EXPECT_EQ(all(), QStringList()); // the dock may have been unplugged
    seeAccessory();
    compare();
    EXPECT_EQ(wrong, QStringList(valueLine("0x04B1 XEC_APP_CMD_DATA0", "0x00 (0)", "0x01 (1)")));
}

TEST_F(ComparisonOf, ASerialNumberStaysTheSame)
{
    machine.attach(ACCESSORY_KVANE);
    seeAccessory();
    KvaneAccessoryManager *const kvane = KvaneAccessoryManager::instance();
    const QString number = kvane->getKvaneSnCode();
    EXPECT_EQ(kvane->getKvaneSnCode(), number);
    seeAccessory();
    compare();
    EXPECT_EQ(all(), QStringList());
    machine.state->accessory.kvaneSerialNumber[6].store(1);
    EXPECT_NE(kvane->getKvaneSnCode(), number);
    seeAccessory();
    compare();
    EXPECT_EQ(wrong, QStringList(valueLine("0x04B7 KVANE_SN_BYTES+6", "0x01 (1)", "0xCD (205)")));
    EXPECT_EQ(all(), wrong);
}

// Another KVane has another number.
TEST_F(ComparisonOf, ASerialNumberIsThatOfOneKvane)
{
    machine.attach(ACCESSORY_KVANE);
    seeAccessory();
    static_cast<void>(KvaneAccessoryManager::instance()->getKvaneSnCode());
    machine.computer.detach();
    seeAccessory();
    machine.state->accessory.kvaneSerialNumber[6].store(1);
    machine.attach(ACCESSORY_KVANE);
    seeAccessory();
    static_cast<void>(KvaneAccessoryManager::instance()->getKvaneSnCode());
    seeAccessory();
    compare();
    EXPECT_EQ(all(), QStringList());
}

TEST_F(ComparisonOf, TheLedOfTheKvaneIsReadAsItWasWritten)
{
    machine.attach(ACCESSORY_KVANE);
    seeAccessory();
    KvaneAccessoryManager::instance()->setKVaneLedLight(44);
    machine.computer.setKvaneLed(45);
    EXPECT_EQ(KvaneAccessoryManager::instance()->getKVaneLedLight(), 45);
    seeAccessory();
    compare();
    EXPECT_EQ(wrong, QStringList(valueLine("0x04B1 XEC_APP_CMD_DATA0", "0x2D (45)", "0x2C (44)")));
}

TEST_F(ComparisonOf, TheEepromKeepsWhatWasWritten)
{
    EcPowerModeManager *const manager = EcPowerModeManager::instance();
    EXPECT_TRUE(manager->setSmartChargingStatus(false));
    EXPECT_TRUE(manager->getSmartChargingStatus());
    compare();
    EXPECT_EQ(all(), QStringList());
    machine.computer.pokeEeprom(EEP_SMART_CHARGING, SMART_CHARGING_ON);
    EXPECT_TRUE(manager->getSmartChargingStatus());
    compare();
    EXPECT_EQ(wrong, QStringList(valueLine("0x0620 EEP_DATA", "0x50 (80)", "0x00 (0)")));
}

TEST_F(ComparisonOf, AVersionMayChangeWithTheAccessoryAndAfterAnUpdateOnly)
{
    const auto readVersions = [] {
        QString text;
        EcDirverReader::instance()->getMcuVersion(text);
        EcDirverReader::instance()->getHardwareVersion(text);
    };
    machine.attach(ACCESSORY_DOCK);
    seeAccessory();
    readVersions();
    machine.attach(ACCESSORY_KVANE);
    readVersions(); // before the host knows
    seeAccessory();
    readVersions();
    compare();
    EXPECT_EQ(all(), QStringList());
    machine.computer.setMcuVersion(2, 7, 5);
    readVersions();
    seeAccessory();
    compare();
    EXPECT_EQ(measured, QStringList(valueLine("0x06A4 MCU_VERSION_MINOR", "0x07 (7)", "0x00 (0)")));
    EXPECT_EQ(all(), measured);
    writeRegister(EC_MCU_UPDATE_CTRL, MCU_UPDATE_ON);
    machine.computer.setMcuVersion(9, 9, 9);
    readVersions();
    seeAccessory();
    compare();
    EXPECT_EQ(measured.size(), 1);
}

TEST_F(ComparisonOf, AnEventStaysUntilItIsCleared)
{
    ASSERT_TRUE(machine.computer.armEvent({0x14, 3}));
    readRegister(XEC_APP_EVENT);
    readRegister(XEC_APP_EVENT_DATA);
    writeRegister(XEC_APP_EVENT, APP_EVENT_NONE);
    readRegister(XEC_APP_EVENT);
    ASSERT_TRUE(machine.computer.armEvent({0x15, 4}));
    readRegister(XEC_APP_EVENT);
    readRegister(XEC_APP_EVENT_DATA);
    compare();
    EXPECT_EQ(all(), QStringList());
    machine.computer.poke(XEC_APP_EVENT, APP_EVENT_NONE);
    readRegister(XEC_APP_EVENT);
    compare();
    EXPECT_EQ(wrong, QStringList(valueLine("0x04A4 XEC_APP_EVENT", "0x00 (0)", "0x15 (21)")));
}

TEST_F(ComparisonOf, AMailboxMayBeSlowWithinTheFactor)
{
    machine.attach(ACCESSORY_DOCK);
    seeAccessory();
    machine.computer.timing().mailboxBusyMs.store(100);
    static_cast<void>(DockAccessoryManager::instance()->getDockLedStatus());
    seeAccessory();
    compare();
    EXPECT_EQ(slow, QStringList("0x04B0 XEC_APP_CMD was busy"));
    EXPECT_EQ(all(), slow);
    compare(20);
    EXPECT_EQ(all(), QStringList());
}

TEST_F(ComparisonOf, TheEepromMayBeSlowWithinTheFactor)
{
    machine.computer.timing().eepromBusyMs.store(60);
    EXPECT_TRUE(EcPowerModeManager::instance()->setSmartChargingStatus(true));
    compare();
    EXPECT_EQ(slow, QStringList("0x0640 EEP_STATUS was busy"));
    EXPECT_EQ(all(), slow);
    compare(20);
    EXPECT_EQ(all(), QStringList());
}

// One late byte does not tell of the EC, but of the host.
TEST_F(ComparisonOf, AHostThatLooksLateIsNoDeviation)
{
    writeRegister(EC_FAN_MODE, 1);
    for (tarnRecording::EcRecord &record : computer.records) {
        record.us *= 50;
        record.lastUs *= 50;
    }
    readRegister(EC_FAN_MODE);
    compare();
    EXPECT_EQ(all(), QStringList());
}
