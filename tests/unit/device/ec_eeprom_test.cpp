#include "device/ec_dirver_controller_hal.h"

#include "device/ec_registers.h"
#include "support/simulated_machine.h"

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using tarnSimulator::Fault;

// The EEPROM mailbox, against the simulated EC.
class EcEeprom : public tarnTest::MachineTest
{
protected:
    EcEeprom()
        : driver(EcDirverControllerHal::instance())
    {
        machine.log.clear();
    }

    EcDirverControllerHal *driver;
};

TEST_F(EcEeprom, ReadsAByte)
{
    machine.state->eeprom[0x33] = 0x50;
    EXPECT_EQ(driver->readEeprom(0x33), 0x50);
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 W 0642 33", "40 W 0643 00", "60 W 0644 01", "80 W 0641 01", "110 R 0640 01",
            "130 R 0620 50"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status  "}));
}

TEST_F(EcEeprom, WritesAByteAndReadsTheStatusTwice)
{
    EXPECT_EQ(driver->writeEeprom(0x0133 & 0xFF, 0x50), 0);
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 W 0620 50", "40 W 0642 33", "60 W 0643 00", "80 W 0644 01", "100 W 0641 02",
            "130 R 0640 01", "150 R 0640 01"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status ", "write eeprom success"}));
    EXPECT_EQ(machine.state->eeprom[0x33], 0x50);
}

TEST_F(EcEeprom, PassesBothBytesOfTheOffset)
{
    EXPECT_EQ(driver->readEeprom(0x1234), -2); // beyond the part
    EXPECT_EQ(machine.traffic().mid(0, 2), QStringList({"W 0642 34", "W 0643 12"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status  ", "W: read eeprom error"}));
}

TEST_F(EcEeprom, WaitsForABusyPart)
{
    machine.state->timing.eepromBusyMs = 60;
    machine.state->eeprom[0x33] = 7;
    EXPECT_EQ(driver->readEeprom(0x33), 7);
    constexpr int writesBeforeCommand = 3; // the offset in two bytes and the length
    // The EC takes the command at 80 ms; re-reads end 25 ms apart, 5 ms of which are the pause after each.
    EXPECT_EQ(machine.timeline().mid(writesBeforeCommand),
        QStringList({"80 W 0641 01", "110 R 0640 00", "130 R 0640 00", "155 R 0640 01", "180 R 0620 07"}));
}

TEST_F(EcEeprom, GivesUpAReadSilentlyAfterTenReReads)
{
    machine.faults().switchOn(Fault::EepromBusy);
    EXPECT_EQ(driver->readEeprom(0x33), -1);
    EXPECT_EQ(machine.traffic().count("R 0640 00"), 11);
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status  "}));
}

TEST_F(EcEeprom, GivesUpAWriteAfterTenReReads)
{
    machine.faults().switchOn(Fault::EepromBusy);
    EXPECT_EQ(driver->writeEeprom(0x33, 1), -1);
    EXPECT_EQ(machine.traffic().count("R 0640 00"), 12);
    EXPECT_EQ(
        machine.log.lines(), QStringList({"wait eep_status ", "W: write eeprom fail after 10 attempts"}));
}

TEST_F(EcEeprom, ReportsAnErrorOfTheMailbox)
{
    machine.faults().switchOn(Fault::EepromError, 2);
    EXPECT_EQ(driver->readEeprom(0x33), -2);
    EXPECT_EQ(driver->writeEeprom(0x33, 1), -2);
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {"wait eep_status  ", "W: read eeprom error", "wait eep_status ", "W: write eeprom fail"}));
}

TEST_F(EcEeprom, AStatusThatCannotBeReadIsAnError)
{
    machine.faults().switchOn(Fault::FailRead, EEP_STATUS);
    EXPECT_EQ(driver->readEeprom(0x33), -2);
    EXPECT_TRUE(machine.log.contains("W: readEeprom failed"));
    EXPECT_TRUE(machine.log.contains("W: read eeprom error"));
    machine.log.clear();
    EXPECT_EQ(driver->writeEeprom(0x33, 1), -2);
    EXPECT_TRUE(machine.log.contains("W: writeEeprom failed"));
    EXPECT_TRUE(machine.log.contains("W: write eeprom fail"));
}

TEST_F(EcEeprom, KeepsTheFirstStatusWhenTheSecondReadFails)
{
    machine.faults().switchOn(Fault::FailRead, EEP_STATUS, 1);
    EXPECT_EQ(driver->writeEeprom(0x33, 0x50), 0);
    EXPECT_EQ(machine.log.lines().filter("writeEeprom failed").size(), 1);
    EXPECT_EQ(machine.log.lines().last(), "write eeprom success");
}

TEST_F(EcEeprom, DataThatCannotBeReadIs255)
{
    machine.state->eeprom[0x33] = 0x50;
    machine.faults().switchOn(Fault::FailRead, EEP_DATA);
    EXPECT_EQ(driver->readEeprom(0x33), 255);
    machine.faults().clear();
    EXPECT_EQ(driver->readEeprom(0x33), 0x50);
}

TEST_F(EcEeprom, DataThatCannotBeAskedForIs255)
{
    machine.state->eeprom[0x33] = 0x50;
    // The status has been read by 110 ms; the EC takes no byte of the request that follows.
    machine.clock.at(112ms, [this] { machine.faults().switchOn(Fault::IbfStuck); });
    EXPECT_EQ(driver->readEeprom(0x33), 255);
    EXPECT_EQ(machine.traffic().last(), "R 0640 01");
    EXPECT_EQ(machine.clock.now(), 125ms + 5000ms); // the command is taken, but its address is given up
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status  "}));
}

TEST_F(EcEeprom, GoesOnAfterAStatusThatCouldNotBeReadAgain)
{
    machine.state->timing.eepromBusyMs = 60;
    machine.state->eeprom[0x33] = 7;
    machine.faults().switchOn(Fault::FailRead, EEP_STATUS, 1);
    machine.clock.at(3s, [this] { machine.faults().clear(); });
    EXPECT_EQ(driver->readEeprom(0x33), 7);
    constexpr int writesOfRequest = 4; // the offset in two bytes, the length and the command
    EXPECT_EQ(machine.traffic().mid(writesOfRequest), QStringList({"R 0640 00", "R 0640 01", "R 0620 07"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"wait eep_status  ", "ec reader not normal, begin to reload dll.", "Library is kill",
            "open out32Func and inp32Func is sucessful!", "Library loaded second"}));
}

// It then reads what the previous operation has left.
TEST_F(EcEeprom, GoesOnAfterACommandThatCouldNotBeWritten)
{
    machine.state->eeprom[0x33] = 0x50;
    machine.state->xdata[EEP_DATA] = 7;
    machine.faults().switchOn(Fault::FailWrite, EEP_CMD);
    EXPECT_EQ(driver->readEeprom(0x33), 7);
    EXPECT_EQ(
        machine.traffic(), QStringList({"W 0642 33", "W 0643 00", "W 0644 01", "R 0640 01", "R 0620 07"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status  "}));
    machine.log.clear();

    EXPECT_EQ(driver->writeEeprom(0x33, 9), 0);
    EXPECT_EQ(machine.state->eeprom[0x33], 0x50);
    EXPECT_EQ(machine.log.lines(), QStringList({"wait eep_status ", "write eeprom success"}));
}

TEST_F(EcEeprom, SaysNothingOfAFirstStatusThatCannotBeReadAfterAWrite)
{
    machine.faults().switchOn(Fault::FailRead, EEP_STATUS);
    machine.clock.at(3s, [this] { machine.faults().clear(); });
    EXPECT_EQ(driver->writeEeprom(0x33, 0x50), 0);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ec reader not normal, begin to reload dll.", "Library is kill",
            "open out32Func and inp32Func is sucessful!", "Library loaded second", "wait eep_status ",
            "write eeprom success"}));
}

TEST_F(EcEeprom, IgnoresFailedMailboxWrites)
{
    machine.state->eeprom[0x33] = 0x50;
    machine.state->xdata[EEP_LEN] = 1; // from an earlier operation
    machine.faults().switchOn(Fault::FailWrite, EEP_LEN);
    EXPECT_EQ(driver->readEeprom(0x33), 0x50);
    EXPECT_TRUE(machine.traffic().filter("W 0644").isEmpty());
}
