#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;

namespace {

const QString beginToGet = "Begin to get smart charge status.";
const QString getAnswered = "wait eep_status  "; // the driver's own line

QStringList setLines(bool on, const QStringList &driver, const char *end)
{
    return QStringList({on ? "Begin to set smart charging ON." : "Begin to set smart charging OFF."}) + driver
        + QStringList({QString("Set smart charging status:  %1  %2").arg(on ? "true" : "false").arg(end)});
}

} // namespace

class SmartCharging : public tarnTest::PowerModeTest
{
protected:
    void store(quint8 value) { machine.state->eeprom[EEP_SMART_CHARGING] = value; }
    int stored() const { return machine.state->eeprom[EEP_SMART_CHARGING]; }
};

TEST_F(SmartCharging, IsOffBeforeTheFirstRead)
{
    EXPECT_FALSE(manager->isSmartChargingOn());
}

TEST_F(SmartCharging, FindsItOn)
{
    EXPECT_TRUE(manager->getSmartChargingStatus());
    EXPECT_TRUE(manager->isSmartChargingOn());
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 W 0642 33", "40 W 0643 00", "60 W 0644 01", "80 W 0641 01", "110 R 0640 01",
            "130 R 0620 50"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({beginToGet, getAnswered,
            "Get smart charge status successed with:  80 , status is ON:  true ."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(SmartCharging, FindsItOff)
{
    ASSERT_TRUE(manager->getSmartChargingStatus());
    machine.log.clear();
    store(0);
    EXPECT_TRUE(manager->getSmartChargingStatus());
    EXPECT_FALSE(manager->isSmartChargingOn());
    EXPECT_EQ(machine.log.lines(),
        QStringList({beginToGet, getAnswered,
            "Get smart charge status successed with:  0 , status is OFF:  false ."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(SmartCharging, ReadsThreeStates)
{
    EXPECT_EQ(manager->readSmartCharging(), std::optional(true));
    store(0);
    EXPECT_EQ(manager->readSmartCharging(), std::optional(false));
    store(1);
    EXPECT_EQ(manager->readSmartCharging(), std::nullopt);
}

class SmartChargingNonsense : public SmartCharging, public ::testing::WithParamInterface<int>
{ };

TEST_P(SmartChargingNonsense, IsAFailedReadAndCountsAsOff)
{
    ASSERT_TRUE(manager->getSmartChargingStatus());
    ASSERT_TRUE(manager->isSmartChargingOn());
    machine.log.clear();
    store(static_cast<quint8>(GetParam()));
    EXPECT_FALSE(manager->getSmartChargingStatus());
    EXPECT_FALSE(manager->isSmartChargingOn());
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {beginToGet, getAnswered, QString("Get smart charge status failed with  %1").arg(GetParam())}));
    EXPECT_EQ(stored(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Bytes, SmartChargingNonsense, ::testing::Values(0x01, 0x05, 0x4F, 0x51, 0x80, 0xFF));

struct MailboxFault
{
    const char *name;
    Fault fault;
    int status;
    QStringList readLines;
    QString writeLine;
};

class SmartChargingMailbox : public SmartCharging, public ::testing::WithParamInterface<MailboxFault>
{ };

TEST_P(SmartChargingMailbox, ThatFailsIsAFailedRead)
{
    ASSERT_TRUE(manager->getSmartChargingStatus());
    machine.log.clear();
    machine.faults().switchOn(GetParam().fault, GetParam().status);
    EXPECT_FALSE(manager->getSmartChargingStatus());
    EXPECT_FALSE(manager->isSmartChargingOn());
    EXPECT_EQ(machine.log.lines(), QStringList({beginToGet, getAnswered}) + GetParam().readLines);
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_P(SmartChargingMailbox, ThatFailsKeepsTheKnownState)
{
    for (const bool on : {true, false}) {
        ASSERT_TRUE(manager->setSmartChargingStatus(!on));
        machine.log.clear();
        machine.faults().switchOn(GetParam().fault, GetParam().status);
        EXPECT_FALSE(manager->setSmartChargingStatus(on));
        EXPECT_EQ(manager->isSmartChargingOn(), !on);
        EXPECT_EQ(stored(), on ? 0 : 0x50);
        EXPECT_EQ(machine.log.lines(), setLines(on, {"wait eep_status ", GetParam().writeLine}, "failed."));
        machine.faults().clear();
    }
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Faults, SmartChargingMailbox,
    ::testing::Values(MailboxFault {"Busy", Fault::EepromBusy, 0, {"Get smart charge status failed with  -1"},
                          "W: write eeprom fail after 10 attempts"},
        MailboxFault {"Error", Fault::EepromError, 2,
            {"W: read eeprom error", "Get smart charge status failed with  -2"}, "W: write eeprom fail"}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(SmartCharging, DataThatDoesNotComeIsAFailedRead)
{
    machine.faults().switchOn(Fault::FailRead, EEP_DATA);
    EXPECT_FALSE(manager->getSmartChargingStatus());
    EXPECT_EQ(machine.log.lines().last(), "Get smart charge status failed with  255");
    machine.faults().clear();
    EXPECT_TRUE(manager->getSmartChargingStatus());
}

class SmartChargingSwitch : public SmartCharging, public ::testing::WithParamInterface<bool>
{ };

TEST_P(SmartChargingSwitch, IsStored)
{
    const bool on = GetParam();
    store(0x33);
    EXPECT_TRUE(manager->setSmartChargingStatus(on));
    EXPECT_EQ(stored(), on ? 0x50 : 0);
    EXPECT_EQ(manager->isSmartChargingOn(), on);
    EXPECT_EQ(machine.timeline(),
        QStringList({on ? "20 W 0620 50" : "20 W 0620 00", "40 W 0642 33", "60 W 0643 00", "80 W 0644 01",
            "100 W 0641 02", "130 R 0640 01", "150 R 0640 01"}));
    EXPECT_EQ(machine.log.lines(), setLines(on, {"wait eep_status ", "write eeprom success"}, "successed."));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Both, SmartChargingSwitch, ::testing::Bool(),
    [](const auto &row) { return std::string(row.param ? "On" : "Off"); });
