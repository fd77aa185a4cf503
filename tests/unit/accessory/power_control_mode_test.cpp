#include "unexpected_results_fixture.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;

struct ControlModeRow
{
    int mode;
    const char *line;
};

namespace {

const ControlModeRow controlModeRows[] = {
    {0, "ec powerctrlmode is auto mode:  0"},
    {1, "ec powerctrlmode is manual mode:  1"},
    {2, "ec powerctrlmode is unlimited mode:  2"},
    {3, "ec powerctrlmode read with unexpected circumstances:  3"},
    {255, "ec powerctrlmode read with unexpected circumstances:  255"},
};

QStringList controlModeLinesUpToReadBack(int mode)
{
    return {"ready to set ec powerctrlmode. ", "begin to set ec powerctrlmode. ",
        QString("write ecPowerCtrlMode:  %1 to EC_POWERMODE_PL_CTRL.").arg(mode),
        "ready to get ec powerctrlmode."};
}

} // namespace

using PowerControlMode = tarnTest::PowerModeTest;

class PowerControlModes : public PowerControlMode, public ::testing::WithParamInterface<ControlModeRow>
{ };

TEST_P(PowerControlModes, IsWrittenAndReadBack)
{
    const auto mode = static_cast<quint8>(GetParam().mode);
    setRegister(EC_POWERMODE_PL_CTRL, 0x33);
    EXPECT_EQ(manager->setEcPowerCtrlMode(mode), 0);
    EXPECT_EQ(machine.timeline(),
        QStringList({QString("20 W 04A7 %1").arg(mode, 2, 16, QLatin1Char('0')).toUpper(),
            QString("50 R 04A7 %1").arg(mode, 2, 16, QLatin1Char('0')).toUpper()}));
    EXPECT_EQ(elapsed(), 50);
    EXPECT_EQ(machine.log.lines(),
        controlModeLinesUpToReadBack(mode)
            + QStringList({"get ec powerctrlmode successed.", GetParam().line,
                QString("set ec powerctrlmode successed: %1").arg(mode)}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_P(PowerControlModes, ReadBackDifferentlyIsAnotherFailure)
{
    constexpr int wanted = 100; // none of the modes
    machine.clock.at(tarnTest::milliseconds(25),
        [this] { setRegister(EC_POWERMODE_PL_CTRL, static_cast<quint8>(GetParam().mode)); });
    EXPECT_EQ(manager->setEcPowerCtrlMode(wanted), -2);
    EXPECT_EQ(machine.log.lines(),
        controlModeLinesUpToReadBack(wanted)
            + QStringList({"get ec powerctrlmode successed.", GetParam().line,
                QString("set ec powerctrlmode failed with unexpected number.  Expect:  100 but : %1")
                    .arg(GetParam().mode)}));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Modes, PowerControlModes, ::testing::ValuesIn(controlModeRows),
    [](const auto &row) { return "Mode" + std::to_string(row.param.mode); });

TEST_F(PowerControlMode, ManualThatTurnsOutUnlimitedFails)
{
    constexpr int linesBefore = 5; // four up to the read-back and its success
    machine.clock.at(
        tarnTest::milliseconds(25), [this] { setRegister(EC_POWERMODE_PL_CTRL, PL_CTRL_UNLIMITED); });
    EXPECT_EQ(manager->setEcPowerCtrlMode(PL_CTRL_MANUAL), -2);
    EXPECT_EQ(machine.log.lines().mid(linesBefore),
        QStringList({"ec powerctrlmode is unlimited mode:  2",
            "set ec powerctrlmode failed with unexpected number.  Expect:  1 but : 2"}));
}

TEST_F(PowerControlMode, AFailedWriteIsNotReadBack)
{
    machine.computer.setPowerControl(PL_CTRL_AUTO);
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL_CTRL);
    EXPECT_EQ(manager->setEcPowerCtrlMode(PL_CTRL_MANUAL), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(reg(EC_POWERMODE_PL_CTRL), PL_CTRL_AUTO);
    EXPECT_EQ(elapsed(), tarnTest::refusedWriteTime);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to set ec powerctrlmode. ", "begin to set ec powerctrlmode. ",
            "write ecPowerCtrlMode:  1 failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(PowerControlMode, AFailedReadBackFails)
{
    machine.faults().switchOn(Fault::FailRead, EC_POWERMODE_PL_CTRL);
    EXPECT_EQ(manager->setEcPowerCtrlMode(PL_CTRL_MANUAL), -1);
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04A7 01"}));
    EXPECT_EQ(reg(EC_POWERMODE_PL_CTRL), PL_CTRL_MANUAL);
    EXPECT_EQ(machine.log.lines(),
        controlModeLinesUpToReadBack(1) + tarnTest::unansweredRead
            + QStringList({"get ec powerctrlmode failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

using UnexpectedControlModeResults = tarnTest::UnexpectedResultsTest;

TEST_F(UnexpectedControlModeResults, OfTheWrite)
{
    ec->writeResults[EC_POWERMODE_PL_CTRL] = -3;
    EXPECT_EQ(manager->setEcPowerCtrlMode(PL_CTRL_MANUAL), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to set ec powerctrlmode. ", "begin to set ec powerctrlmode. ",
            "write ecPowerCtrlMode failed with unexpected circumstances."}));
}

TEST_F(UnexpectedControlModeResults, OfTheReadBack)
{
    ec->readResults[EC_POWERMODE_PL_CTRL] = -2;
    EXPECT_EQ(manager->setEcPowerCtrlMode(PL_CTRL_MANUAL), -1);
    EXPECT_EQ(machine.traffic(), QStringList({"W 04A7 01"}));
    EXPECT_EQ(machine.log.lines(),
        controlModeLinesUpToReadBack(1)
            + QStringList({"get ec powerctrlmode failed with unexpected circumstances."}));
}
