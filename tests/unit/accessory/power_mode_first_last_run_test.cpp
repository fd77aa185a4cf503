#include "ec_stand_in.h"
#include "profile_file_fixture.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;
using tarnTest::balanceProfile;
using tarnTest::highProfile;
using tarnTest::InItsPlace;
using tarnTest::lowProfile;
using tarnTest::neverRestored;
using tarnTest::restoreFailed;
using tarnTest::savedBalance;
using tarnTest::savedHigh;
using tarnTest::savedLow;
using tarnTest::usualPl1;

namespace {

const QString manualFailed = "W: failed to set ec powermode to manual when begin.";
const QString manualRetryLine = "retry to set ec powermode to manual for  1  times.";
const QString autoFailed = "W: Warning!!! Failed to set Ec Power Control Mode to Auto when app closing!!!";

QString autoRetryLine(int count)
{
    return QString("retry to set Ec Power Control Mode to Auto for  %1  times.").arg(count);
}

const QStringList lastRunBegins {
    "ec operation last to do nothing", "app will close after set ec powermode to auto mode."};
const QStringList lastRunEnds {
    "set ec powermode to auto mode before app close successed.", "app is closing now."};

const QStringList autoSet {"ready to set ec powerctrlmode. ", "begin to set ec powerctrlmode. ",
    "write ecPowerCtrlMode:  0 to EC_POWERMODE_PL_CTRL.", "ready to get ec powerctrlmode.",
    "get ec powerctrlmode successed.", "ec powerctrlmode is auto mode:  0",
    "set ec powerctrlmode successed: 0"};
const QStringList autoNotWritten {"ready to set ec powerctrlmode. ", "begin to set ec powerctrlmode. ",
    "write ecPowerCtrlMode:  0 failed."};

} // namespace

using FirstRun = tarnTest::ProfileFileTest;

TEST_F(FirstRun, TakesManualControlAndStartsWithBalance)
{
    manager->powerModeFirstRun();
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 W 04A7 01", "50 R 04A7 01", "70 R 04FC 00", "100 W 04A8 23", "125 R 04AB 23",
            "155 W 04A9 37", "180 R 04AC 37", "210 W 04AA 4B", "235 R 04AD 4B", "265 W 046E 00"}));
    EXPECT_EQ(elapsed(), 265);
    EXPECT_EQ(savedBytes(), savedBalance);
    EXPECT_EQ(manager->currentPowerMode(), balanceProfile);
    EXPECT_EQ(linesBeforeApplication(),
        QStringList({"ec operation first to do nothing", "ready to set ec powerctrlmode. ",
            "begin to set ec powerctrlmode. ", "write ecPowerCtrlMode:  1 to EC_POWERMODE_PL_CTRL.",
            "ready to get ec powerctrlmode.", "get ec powerctrlmode successed.",
            "ec powerctrlmode is manual mode:  1", "set ec powerctrlmode successed: 1",
            "set ec power ctrl mode to manual when begin successed."}));
    EXPECT_EQ(linesAfterApplication().last(), "set ec powermode for first when app begin to run successed.");
}

TEST_F(FirstRun, RestoresTheSavedProfile)
{
    save(savedLow);
    manager->powerModeFirstRun();
    EXPECT_EQ(manager->currentPowerMode(), lowProfile);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), usualPl1(lowProfile));
    EXPECT_EQ(machine.log.lines().last(), "set ec powermode for first when app begin to run successed.");
}

TEST_F(FirstRun, ReportsAProblemWithTheFile)
{
    replaceProfileFile(InItsPlace::Folder);
    manager->powerModeFirstRun();
    EXPECT_EQ(manager->currentPowerMode(), balanceProfile);
    EXPECT_EQ(machine.log.lines().last(),
        "W: set ec powermode for first when app begin to run successed but fail with configuration file "
        "operation.");
}

TEST_F(FirstRun, ReportsAProfileThatCouldNotBeApplied)
{
    save(savedHigh);
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL2);
    manager->powerModeFirstRun();
    EXPECT_EQ(manager->currentPowerMode(), restoreFailed);
    EXPECT_EQ(reg(EC_POWERMODE_PL_CTRL), PL_CTRL_MANUAL);
    EXPECT_EQ(machine.log.lines().last(), "W: set ec powermode for first when app begin to run failed.");
    EXPECT_EQ(savedBytes(), savedHigh);
}

TEST_F(FirstRun, MakesOneAttemptAtManualControl)
{
    save(savedLow);
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL_CTRL);
    manager->powerModeFirstRun();
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.state->counters.refusedAccesses, 1);
    EXPECT_EQ(elapsed(), tarnTest::refusedWriteTime + 10);
    EXPECT_EQ(machine.clock.waits().back(), 10);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ec operation first to do nothing", "ready to set ec powerctrlmode. ",
            "begin to set ec powerctrlmode. ", "write ecPowerCtrlMode:  1 failed.", manualFailed,
            manualRetryLine}));
    EXPECT_EQ(manager->currentPowerMode(), neverRestored);
    EXPECT_EQ(savedBytes(), savedLow);
}

TEST_F(FirstRun, WithoutManualControlTheKnownProfileStays)
{
    save(savedLow);
    manager->powerModeFirstRun();
    save(savedHigh);
    machine.faults().switchOn(Fault::FailRead, EC_POWERMODE_PL_CTRL);
    manager->powerModeFirstRun();
    EXPECT_EQ(manager->currentPowerMode(), lowProfile);
    EXPECT_EQ(savedBytes(), savedHigh);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), usualPl1(lowProfile));
    machine.faults().clear();
    manager->powerModeFirstRun();
    EXPECT_EQ(manager->currentPowerMode(), highProfile);
}

TEST_F(FirstRun, AnECThatStaysInAnotherModeIsNoManualControl)
{
    machine.clock.at(tarnTest::milliseconds(25), [this] { setRegister(EC_POWERMODE_PL_CTRL, PL_CTRL_AUTO); });
    manager->powerModeFirstRun();
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04A7 01", "50 R 04A7 00"}));
    EXPECT_EQ(elapsed(), 60);
    const QStringList lines = machine.log.lines();
    EXPECT_EQ(lines.mid(lines.size() - 2), QStringList({manualFailed, manualRetryLine}));
    EXPECT_EQ(manager->currentPowerMode(), neverRestored);
    EXPECT_FALSE(profileFileExists());
}

using LastRun = tarnTest::ProfileFileTest;

TEST_F(LastRun, GivesControlBack)
{
    save(savedLow);
    manager->powerModeFirstRun();
    machine.log.clear();
    machine.timeline();
    manager->powerModeLastRun();
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04A7 00", "50 R 04A7 00"}));
    EXPECT_EQ(machine.log.lines(), lastRunBegins + autoSet + lastRunEnds);
    EXPECT_EQ(manager->currentPowerMode(), lowProfile);
    EXPECT_EQ(savedBytes(), savedLow);
}

TEST_F(LastRun, GivesUpAfterFiveAttempts)
{
    save("x");
    setRegister(EC_POWERMODE_PL_CTRL, PL_CTRL_MANUAL);
    machine.faults().switchOn(Fault::FailRegister, EC_POWERMODE_PL_CTRL);
    manager->powerModeLastRun();
    EXPECT_EQ(machine.state->counters.refusedAccesses, 5);
    EXPECT_EQ(elapsed(), 5 * (tarnTest::refusedWriteTime + 50));
    QStringList lines = lastRunBegins;
    for (int count = 1; count <= 5; ++count)
        lines << autoNotWritten << autoFailed << autoRetryLine(count);
    EXPECT_EQ(machine.log.lines(), lines);
    EXPECT_EQ(reg(EC_POWERMODE_PL_CTRL), PL_CTRL_MANUAL);
    EXPECT_EQ(savedBytes(), "x");
}

TEST_F(LastRun, SucceedsAtTheThirdAttempt)
{
    constexpr int attempt = tarnTest::refusedWriteTime + 50;
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL_CTRL);
    machine.clock.at(tarnTest::milliseconds(2 * attempt - 1), [this] { machine.faults().clear(); });
    manager->powerModeLastRun();
    EXPECT_EQ(machine.timeline(),
        QStringList(
            {QString("%1 W 04A7 00").arg(2 * attempt + 20), QString("%1 R 04A7 00").arg(2 * attempt + 50)}));
    EXPECT_EQ(machine.log.lines(),
        lastRunBegins + autoNotWritten + QStringList({autoFailed, autoRetryLine(1)}) + autoNotWritten
            + QStringList({autoFailed, autoRetryLine(2)}) + autoSet + lastRunEnds);
}

TEST_F(LastRun, SucceedsAtTheLastAttempt)
{
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL_CTRL);
    machine.clock.at(tarnTest::milliseconds(4 * (tarnTest::refusedWriteTime + 50) - 1),
        [this] { machine.faults().clear(); });
    manager->powerModeLastRun();
    EXPECT_EQ(machine.log.lines().count(autoFailed), 4);
    EXPECT_EQ(machine.log.lines().last(), "app is closing now.");
}

TEST_F(LastRun, AnECThatStaysInManualControlIsTriedFiveTimes)
{
    for (int attempt = 0; attempt < 5; ++attempt)
        machine.clock.at(tarnTest::milliseconds(100 * attempt + 25),
            [this] { setRegister(EC_POWERMODE_PL_CTRL, PL_CTRL_MANUAL); });
    manager->powerModeLastRun();
    EXPECT_EQ(machine.traffic().count("W 04A7 00"), 5);
    EXPECT_EQ(machine.log.lines().count(autoFailed), 5);
    EXPECT_EQ(machine.log.lines().last(), autoRetryLine(5));
    EXPECT_EQ(elapsed(), 500);
}

TEST_F(LastRun, AnswersOthersBetweenTheAttempts)
{
    QList<bool> lockedInPauses;
    machine.clock.onWait = [&](tarnTest::milliseconds wait) {
        if (wait.count() == 50)
            lockedInPauses << ecAccessMutex.isLocked();
    };
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL_CTRL);
    manager->powerModeLastRun();
    EXPECT_EQ(lockedInPauses, QList<bool>(5, false));
}

// The only waits are those of the sequences themselves.
class RunPauses : public tarnTest::EcLockTest
{
protected:
    RunPauses() { tarnTest::EcStandIn::install()->writeResults[EC_POWERMODE_PL_CTRL] = -1; }
};

TEST_F(RunPauses, AreExact)
{
    auto *manager = tarnAccessoryManager::EcPowerModeManager::instance();
    manager->powerModeFirstRun();
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({10}));
    machine.clock.forgetWaits();
    manager->powerModeLastRun();
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({50, 50, 50, 50, 50}));
}
