#include "tarnsim_session.h"

#include "device/ec_registers.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;

class TarnsimFaults : public tarnSimulatorTest::TarnsimSession
{ };

TEST_F(TarnsimFaults, SwitchesPlainFaults)
{
    EXPECT_EQ(run(QStringLiteral("fault ibf-stuck")), 0);
    EXPECT_TRUE(computer->faults().isOn(Fault::IbfStuck));
    EXPECT_EQ(run(QStringLiteral("fault ibf-stuck off")), 0);
    EXPECT_FALSE(computer->faults().isOn(Fault::IbfStuck));
    EXPECT_EQ(run(QStringLiteral("fault no-answer on")), 0);
    EXPECT_TRUE(computer->faults().isOn(Fault::NoAnswer));
    EXPECT_EQ(run(QStringLiteral("clear-faults")), 0);
    EXPECT_FALSE(computer->faults().isOn(Fault::NoAnswer));
}

TEST_F(TarnsimFaults, SwitchesFaultsWithNumbers)
{
    EXPECT_EQ(run(QStringLiteral("fault slow")), 0);
    EXPECT_EQ(computer->faults().value(Fault::Slow), 20);
    EXPECT_EQ(run(QStringLiteral("fault slow 300")), 0);
    EXPECT_EQ(computer->faults().value(Fault::Slow), 300);
    EXPECT_EQ(run(QStringLiteral("fault readback-offset -11")), 0);
    EXPECT_EQ(computer->faults().value(Fault::ReadbackOffset), -11);
    EXPECT_EQ(run(QStringLiteral("fault eeprom-error on")), 0);
    EXPECT_EQ(computer->faults().value(Fault::EepromError), 2);
}

TEST_F(TarnsimFaults, SwitchesFaultsOfRegisters)
{
    EXPECT_EQ(run(QStringLiteral("fault fail-write EC_POWERMODE_PL2")), 0);
    EXPECT_EQ(computer->faults().value(Fault::FailWrite), EC_POWERMODE_PL2);
    EXPECT_EQ(computer->faults().remaining(Fault::FailWrite), 0U);
    EXPECT_EQ(run(QStringLiteral("fault fail-read 0x4B0 3")), 0);
    EXPECT_EQ(computer->faults().value(Fault::FailRead), 0x4B0);
    EXPECT_EQ(computer->faults().remaining(Fault::FailRead), 3U);
    EXPECT_EQ(run(QStringLiteral("fault fail-after 5")), 0);
    EXPECT_TRUE(computer->faults().isOn(Fault::FailAfter));
    EXPECT_EQ(computer->faults().remaining(Fault::FailAfter), 5U);
}

// The columns of a list never run together, whatever stands in them.
TEST_F(TarnsimFaults, AndValuesStandInColumns)
{
    EXPECT_EQ(run(QStringLiteral("fault fail-device-disable gpu 2")), 0);
    EXPECT_EQ(run(QStringLiteral("faults")), 0);
    EXPECT_TRUE(said("fail-device-description  off      "));
    EXPECT_TRUE(said("gpu, after 2 more calls "));
    computer->desktop().windowOpened("--disengaged-graphics");
    EXPECT_EQ(run(QStringLiteral("values")), 0);
    EXPECT_TRUE(said("--disengaged-graphics the switch"));
}

TEST_F(TarnsimFaults, SaysWhatAFaultTakes)
{
    const char *wrong[][2] = {
        {"fault banana", "there is no fault \"banana\""},
        {"fault ibf-stuck 3", "does not take \"3\"; allowed: on or off"},
        {"fault slow -1", "allowed: on, off or 0 to 60000 (ms)"},
        {"fault slow 60001", "does not take \"60001\""},
        {"fault slow 10 10", "does not take \"10 10\""},
        {"fault eeprom-error 1", "on, off or 2 to 255 (status)"},
        {"fault fail-read", "needs a value"},
        {"fault fail-read on", "off, or a register name"},
        {"fault fail-read NO_REGISTER", "does not take \"NO_REGISTER\""},
        {"fault fail-read 0x10000", "does not take \"0x10000\""},
        {"fault fail-read 0x4B0 -1", "does not take \"0x4B0 -1\""},
        {"fault fail-after", "needs a value"},
        {"fault fail-after on", "off or 0 to 1000000 (accesses)"},
        {"fault slow off now", "does not take \"off now\""},
    };
    for (const auto &[commandLine, objection] : wrong) {
        EXPECT_EQ(run(QString::fromLatin1(commandLine)), 2) << commandLine;
        EXPECT_TRUE(complained(objection)) << commandLine << ": " << errors.toStdString();
    }
    for (const auto &fault : tarnSimulator::faultTable())
        EXPECT_FALSE(computer->faults().isOn(fault.fault)) << fault.name;
}

TEST_F(TarnsimFaults, ListsFaultsWithTheirState)
{
    EXPECT_EQ(run(QStringLiteral("faults")), 0);
    EXPECT_EQ(output.count(QLatin1Char('\n')), static_cast<qsizetype>(tarnSimulator::faultCount));
    EXPECT_FALSE(said("EC_POWERMODE_PL1"));
    computer->faults().switchOn(Fault::FailRegister, EC_POWERMODE_PL1, 2);
    computer->faults().switchOn(Fault::ReadbackOffset, -15);
    computer->faults().switchOn(Fault::FailAfter, 7, 7);
    EXPECT_EQ(run(QStringLiteral("faults")), 0);
    EXPECT_TRUE(said("0x04A8 EC_POWERMODE_PL1, after 2 more accesses"));
    EXPECT_TRUE(said("-15 W"));
    EXPECT_TRUE(said("after 7 more accesses"));
}
