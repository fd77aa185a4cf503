#include "ec_host.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnSimulatorTest::EcHost;

namespace {

void startEeprom(EcHost &host, std::uint16_t offset, std::uint8_t command, std::uint8_t length = 1)
{
    ASSERT_TRUE(host.write(EEP_ADDR_LO, static_cast<std::uint8_t>(offset & 0xFF)));
    ASSERT_TRUE(host.write(EEP_ADDR_HI, static_cast<std::uint8_t>(offset >> 8)));
    ASSERT_TRUE(host.write(EEP_LEN, length));
    ASSERT_TRUE(host.write(EEP_CMD, command));
}

} // namespace

TEST(SimulatedEeprom, ReadIsBusyAndThenDeliversTheByte)
{
    EcHost host;
    host.computer.pokeEeprom(0x33, 0x50);
    startEeprom(host, 0x33, EEP_CMD_READ);
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_BUSY);
    EXPECT_EQ(host.read(EEP_DATA), 0);

    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
    EXPECT_EQ(host.read(EEP_DATA), 0x50);
}

TEST(SimulatedEeprom, WriteTakesEffectAtItsEnd)
{
    EcHost host;
    ASSERT_TRUE(host.write(EEP_DATA, 0x12));
    startEeprom(host, 0xFE, EEP_CMD_WRITE);
    EXPECT_EQ(host.computer.peekEeprom(0xFE), 0xFF);

    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
    EXPECT_EQ(host.computer.peekEeprom(0xFE), 0x12);
}

TEST(SimulatedEeprom, BusyTimeIsSettable)
{
    EcHost host;
    host.computer.timing().eepromBusyMs.store(100);
    startEeprom(host, 0x33, EEP_CMD_READ);
    host.nowMs += 99;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_BUSY);
    host.nowMs += 1;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
}

TEST(SimulatedEeprom, MailboxBytesChangedMeanwhileDoNotMatter)
{
    EcHost host;
    ASSERT_TRUE(host.write(EEP_DATA, 0x12));
    startEeprom(host, 0x40, EEP_CMD_WRITE);
    ASSERT_TRUE(host.write(EEP_DATA, 0x99));
    ASSERT_TRUE(host.write(EEP_ADDR_LO, 0x41));
    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
    EXPECT_EQ(host.computer.peekEeprom(0x40), 0x12);
    EXPECT_EQ(host.computer.peekEeprom(0x41), 0xFF);
}

TEST(SimulatedEeprom, WhatItCannotDoEndsWithAnError)
{
    struct
    {
        std::uint16_t offset;
        std::uint8_t command;
        std::uint8_t length;
    } const refused[] = {
        {0x133, EEP_CMD_WRITE, 1}, {0x33, EEP_CMD_WRITE, 2}, {0x33, EEP_CMD_WRITE, 0}, {0x33, 3, 1}};
    for (const auto &row : refused) {
        EcHost host;
        ASSERT_TRUE(host.write(EEP_DATA, 0x12));
        startEeprom(host, row.offset, row.command, row.length);
        EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_BUSY);
        host.nowMs += 10;
        EXPECT_EQ(host.read(EEP_STATUS), 2);
        EXPECT_EQ(host.computer.peekEeprom(0x33), SMART_CHARGING_ON);
    }
}

TEST(SimulatedEeprom, BusyFaultNeverEndsAndHasNoEffectEvenLater)
{
    EcHost host;
    host.computer.faults().switchOn(tarnSimulator::Fault::EepromBusy);
    ASSERT_TRUE(host.write(EEP_DATA, 0x12));
    startEeprom(host, 0x33, EEP_CMD_WRITE);
    host.nowMs += 100000;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_BUSY);

    host.computer.faults().switchOff(tarnSimulator::Fault::EepromBusy);
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_BUSY);
    EXPECT_EQ(host.computer.peekEeprom(0x33), SMART_CHARGING_ON);

    startEeprom(host, 0x33, EEP_CMD_READ);
    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
    EXPECT_EQ(host.read(EEP_DATA), SMART_CHARGING_ON);
}

TEST(SimulatedEeprom, ErrorFaultGivesItsStatusAndHasNoEffect)
{
    EcHost host;
    host.computer.faults().switchOn(tarnSimulator::Fault::EepromError, 0x40);
    ASSERT_TRUE(host.write(EEP_DATA, 0x12));
    startEeprom(host, 0x33, EEP_CMD_WRITE);
    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), 0x40);
    EXPECT_EQ(host.computer.peekEeprom(0x33), SMART_CHARGING_ON);

    host.computer.faults().switchOff(tarnSimulator::Fault::EepromError);
    startEeprom(host, 0x33, EEP_CMD_WRITE);
    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
    EXPECT_EQ(host.computer.peekEeprom(0x33), 0x12);
}

TEST(SimulatedEeprom, OperationBegunBeforeAReconnectEndsAfterIt)
{
    EcHost host;
    ASSERT_TRUE(host.write(EEP_DATA, 0x12));
    startEeprom(host, 0x40, EEP_CMD_WRITE);
    host.reconnect();
    host.nowMs += 10;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
    EXPECT_EQ(host.computer.peekEeprom(0x40), 0x12);
}

// The real machine was restarted and its clock began again.
TEST(SimulatedEeprom, OperationFromAnotherClockDoesNotHang)
{
    EcHost host;
    host.nowMs = 1000000;
    startEeprom(host, 0x33, EEP_CMD_READ);
    host.nowMs = 50;
    EXPECT_EQ(host.read(EEP_STATUS), EEP_STATUS_DONE);
}
