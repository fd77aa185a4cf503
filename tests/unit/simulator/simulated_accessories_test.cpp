#include "ec_host.h"

#include "device/monitor/accessory_table.h"

#include <gtest/gtest.h>

#include <set>

using namespace tarnDeviceInfos;
using tarnSimulatorTest::EcHost;

TEST(SimulatedAccessories, NothingIsAttachedAfterPowerOn)
{
    EcHost host;
    EXPECT_FALSE(host.computer.isAttached());
    EXPECT_NE(host.read(MCU_LINK_STATUS), MCU_LINKED);
    EXPECT_EQ(host.read(ACCESSORY_CODE), ACCESSORY_NONE);
}

TEST(SimulatedAccessories, PowerOnDefaults)
{
    EcHost host;
    EXPECT_EQ(host.read(EC_TARN_BATTERY_NUM), 80);
    EXPECT_EQ(host.read(EC_TARN_CHARGING_STATUS), TARN_CHARGING_BIT);
    EXPECT_EQ(host.read(EC_POWER_SUPPLY_MODE), 0);
    EXPECT_EQ(host.read(EC_TARN_POWER_MODE), TARN_POWER_MODE_BALANCE);
    EXPECT_EQ(host.read(EC_POWERMODE_PL_CTRL), PL_CTRL_AUTO);
    EXPECT_EQ(host.computer.peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_ON);
    EXPECT_EQ(host.computer.peekEeprom(0), 0xFF);
}

TEST(SimulatedAccessories, EachOneReportsItself)
{
    for (const tarnSimulator::Accessory &accessory : tarnSimulator::accessoryCatalog()) {
        EcHost host;
        EXPECT_EQ(tarnSimulator::findAccessory(accessory.name), &accessory);
        EXPECT_EQ(tarnSimulator::findAccessory(accessory.code), &accessory);
        host.computer.attach(accessory);
        EXPECT_EQ(host.read(MCU_LINK_STATUS), MCU_LINKED);
        EXPECT_EQ(host.read(ACCESSORY_CODE), accessory.code);
        EXPECT_EQ(host.read(HARDWARE_VERSION), accessory.hardwareVersion);
        EXPECT_EQ(host.read(MCU_VERSION_MAJOR), accessory.mcuMajor);
        EXPECT_EQ(host.read(MCU_VERSION_MINOR), accessory.mcuMinor);
        EXPECT_EQ(host.read(MCU_VERSION_PATCH), accessory.mcuPatch);
    }
}

TEST(SimulatedAccessories, AreThoseThatTheServiceKnows)
{
    std::set<int> simulated;
    for (const auto &accessory : tarnSimulator::accessoryCatalog())
        simulated.insert(accessory.code);
    std::set<int> known;
    for (const AccessoryKind &kind : accessoryTable)
        known.insert(kind.code);
    EXPECT_EQ(simulated, known);
}

TEST(SimulatedAccessories, VersionsTellTheAccessoriesApart)
{
    std::set<int> hardwareVersions;
    std::set<int> mcuVersions;
    for (const auto &accessory : tarnSimulator::accessoryCatalog()) {
        hardwareVersions.insert(accessory.hardwareVersion);
        mcuVersions.insert(accessory.mcuMajor << 16 | accessory.mcuMinor << 8 | accessory.mcuPatch);
        EXPECT_NE(accessory.mcuMinor, accessory.mcuPatch);
        EXPECT_NE(accessory.mcuMajor, accessory.mcuMinor);
    }
    EXPECT_EQ(hardwareVersions.size(), tarnSimulator::accessoryCatalog().size());
    EXPECT_EQ(mcuVersions.size(), tarnSimulator::accessoryCatalog().size());
}

TEST(SimulatedAccessories, DetachingLeavesNothingBehind)
{
    EcHost host;
    host.computer.attach(*tarnSimulator::findAccessory(ACCESSORY_KVANE));
    host.computer.detach();
    for (const auto address : {MCU_LINK_STATUS, ACCESSORY_CODE, HARDWARE_VERSION, MCU_VERSION_MAJOR,
             MCU_VERSION_MINOR, MCU_VERSION_PATCH}) {
        EXPECT_EQ(host.read(address), 0) << address;
    }
}

TEST(SimulatedAccessories, UnknownOneIsLinkedWithItsCode)
{
    EcHost host;
    host.computer.attach(tarnSimulator::unknownAccessory(77));
    EXPECT_TRUE(host.computer.isAttached());
    EXPECT_EQ(host.read(ACCESSORY_CODE), 77);
    EXPECT_EQ(tarnSimulator::findAccessory(std::uint8_t {77}), nullptr);
}

TEST(SimulatedAccessories, SettersReachTheirRegisters)
{
    EcHost host;
    host.computer.setHostBattery(1);
    host.computer.setHostCharging(2);
    host.computer.setKvaneBattery(3);
    host.computer.setKvaneCharging(4);
    host.computer.setPowerSupplyMode(5);
    host.computer.setTarnPowerMode(6);
    host.computer.setHardwareVersion(7);
    host.computer.setMcuVersion(8, 9, 10);
    host.computer.setLinkStatus(11);
    EXPECT_EQ(host.read(EC_TARN_BATTERY_NUM), 1);
    EXPECT_EQ(host.read(EC_TARN_CHARGING_STATUS), 2);
    EXPECT_EQ(host.read(EC_KVANE_BATTERY_NUM), 3);
    EXPECT_EQ(host.read(EC_KVANE_CHARGING_STATUS), 4);
    EXPECT_EQ(host.read(EC_POWER_SUPPLY_MODE), 5);
    EXPECT_EQ(host.read(EC_TARN_POWER_MODE), 6);
    EXPECT_EQ(host.read(HARDWARE_VERSION), 7);
    EXPECT_EQ(host.read(MCU_VERSION_MAJOR), 8);
    EXPECT_EQ(host.read(MCU_VERSION_MINOR), 9);
    EXPECT_EQ(host.read(MCU_VERSION_PATCH), 10);
    EXPECT_EQ(host.read(MCU_LINK_STATUS), 11);
    host.computer.setSmartCharging(false);
    EXPECT_EQ(host.computer.peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_OFF);
    host.computer.setSmartCharging(true);
    EXPECT_EQ(host.computer.peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_ON);
}

TEST(SimulatedAccessories, ResetRestoresDefaultsButKeepsLogAndExchange)
{
    EcHost host;
    host.computer.attach(*tarnSimulator::findAccessory(ACCESSORY_DOCK));
    host.computer.setHostBattery(5);
    host.computer.setSmartCharging(false);
    host.computer.setDockLight({9, 9, 9});
    host.computer.faults().switchOn(tarnSimulator::Fault::NoAnswer);
    ASSERT_TRUE(host.computer.pressGpuKey());
    ASSERT_TRUE(host.write(EC_FAN_MODE, 1));
    host.sendCommand(XDATA_READ_CMD);
    host.sendData(EC_TARN_BATTERY_NUM >> 8);

    host.computer.reset();

    EXPECT_FALSE(host.computer.isAttached());
    EXPECT_EQ(host.computer.dockLight(), (tarnSimulator::Colour {1, 0, 0}));
    EXPECT_FALSE(host.computer.faults().isOn(tarnSimulator::Fault::NoAnswer));
    EXPECT_TRUE(host.computer.armedEvents().empty());
    EXPECT_EQ(host.computer.peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_ON);
    EXPECT_EQ(host.computer.peek(EC_FAN_MODE), 0);
    EXPECT_EQ(host.computer.counters().writes.load(), 0U);
    EXPECT_EQ(host.computer.registerLog().end(), 1U);
    host.sendData(EC_TARN_BATTERY_NUM & 0xFF);
    EXPECT_EQ(host.takeData(), 80);
}
