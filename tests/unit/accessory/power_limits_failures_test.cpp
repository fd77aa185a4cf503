#include "unexpected_results_fixture.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;

namespace {

// The high profile on supply mode 0, one limit after the other.
struct LimitUnderTest
{
    const char *name;
    quint16 address;
    quint16 checkAddress;
    int watts;
    int writtenAt;
};
const LimitUnderTest limitsUnderTest[] = {
    {"PL1", EC_POWERMODE_PL1, EC_POWERMODE_PL1_CHECK, 45, 50},
    {"PL2", EC_POWERMODE_PL2, EC_POWERMODE_PL2_CHECK, 55, 105},
    {"PL4", EC_POWERMODE_PL4, EC_POWERMODE_PL4_CHECK, 75, 160},
};

const QStringList wholeProfile {
    "R 04FC 00", "W 04A8 2D", "R 04AB 2D", "W 04A9 37", "R 04AC 37", "W 04AA 4B", "R 04AD 4B", "W 046E 01"};

} // namespace

class PowerLimitsFailures : public tarnTest::PowerModeTest, public ::testing::WithParamInterface<int>
{
protected:
    const LimitUnderTest &limit() const { return limitsUnderTest[GetParam()]; }
    QString text(const char *format) const { return QString(format).arg(limit().name).arg(limit().watts); }

    // Everything before the limit under test: its number of accesses and of lines.
    QStringList trafficBefore() const { return wholeProfile.mid(0, 1 + 2 * GetParam()); }
    static constexpr int linesOfALimit = 6;
    static constexpr int linesUpToWrite = 2; // of a limit, before the result of its write
    static constexpr int linesUpToCheck = 4; // of a limit, before the result of its check
    QStringList ownLines() const { return machine.log.lines().mid(2 + linesOfALimit * GetParam()); }

    void expectLimitsAfterwards(int limitsChanged)
    {
        const int before[] = {28, 30, 55};
        for (int index = 0; index < 3; ++index) {
            const LimitUnderTest &row = limitsUnderTest[index];
            EXPECT_EQ(reg(row.address), index < limitsChanged ? row.watts : before[index]) << row.name;
        }
        EXPECT_EQ(reg(EC_FAN_MODE), 0x77);
    }

    void SetUp() override { setRegister(EC_FAN_MODE, 0x77); }
};

TEST_P(PowerLimitsFailures, AFailedWriteStopsTheSequence)
{
    machine.faults().switchOn(Fault::FailWrite, limit().address);
    EXPECT_EQ(manager->setEcPowerModeHigh(), -2);
    EXPECT_EQ(machine.traffic(), trafficBefore());
    expectLimitsAfterwards(GetParam());
    EXPECT_EQ(ownLines(),
        QStringList(
            {"ready to set ec powerlimit.", QString("begin to set ec powerlimit. %1").arg(limit().watts),
                QString("write ecPowerLimit:  %1 failed.").arg(limit().watts),
                text("W: set ec %1 to  %2  failed when write.")}));

    machine.faults().clear();
    EXPECT_EQ(manager->setEcPowerModeHigh(), 0);
    EXPECT_EQ(machine.traffic(), wholeProfile);
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_P(PowerLimitsFailures, AFailedCheckStopsTheSequenceWithTheLimitWritten)
{
    machine.faults().switchOn(Fault::FailRead, limit().checkAddress);
    EXPECT_EQ(manager->setEcPowerModeHigh(), -1);
    EXPECT_EQ(machine.traffic(), wholeProfile.mid(0, 2 + 2 * GetParam()));
    expectLimitsAfterwards(GetParam() + 1);
    EXPECT_EQ(ownLines().mid(linesUpToWrite),
        QStringList({QString("write ecPowerLimit:  %1 to EC_POWERMODE_PL.").arg(limit().watts),
            "ready to check ec powerlimit."})
            + tarnTest::unansweredRead
            + QStringList({QString("set ec powerlimit to  %1 failed when check again.").arg(limit().watts),
                text("W: set ec %1 to  %2  failed when check again.")}));
}

TEST_P(PowerLimitsFailures, AnotherValueThanWrittenStopsTheSequence)
{
    // The check register changes between the write and the check.
    machine.clock.at(tarnTest::milliseconds(limit().writtenAt + 10),
        [this] { setRegister(limit().checkAddress, static_cast<quint8>(limit().watts - 11)); });
    EXPECT_EQ(manager->setEcPowerModeHigh(), -1);
    EXPECT_EQ(machine.traffic().size(), 3 + 2 * GetParam());
    expectLimitsAfterwards(GetParam() + 1);
    EXPECT_EQ(ownLines().mid(linesUpToCheck),
        QStringList(
            {QString("set ec powerlimit to  %1 failed with  %2").arg(limit().watts).arg(limit().watts - 11),
                text("W: set ec %1 to  %2  failed when check again.")}));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(EachLimit, PowerLimitsFailures, ::testing::Values(0, 1, 2),
    [](const auto &row) { return std::string(limitsUnderTest[row.param].name); });

using PowerProfileFailures = tarnTest::PowerModeTest;

TEST_F(PowerProfileFailures, AFailedFanModeIsOnlyLogged)
{
    constexpr int linesBefore = 20; // 2 up to the supply mode, 6 for each limit
    machine.faults().switchOn(Fault::FailWrite, EC_FAN_MODE);
    EXPECT_EQ(manager->setEcPowerModeHigh(), 0);
    EXPECT_EQ(machine.traffic(), wholeProfile.mid(0, wholeProfile.size() - 1));
    EXPECT_EQ(machine.log.lines().mid(linesBefore),
        QStringList({"set ec powermode to high finish, now begin to set fan mode  1",
            "set fan mode failed with  1"}));
}

// One limit written or checked for itself; the caller holds the EC.
class PowerLimitOperations : public tarnTest::PowerModeTest
{
protected:
    void SetUp() override { ASSERT_TRUE(ecAccessMutex.lock()); }

    void TearDown() override
    {
        EXPECT_TRUE(ecAccessMutex.isLocked());
        ecAccessMutex.unlock();
    }
};

TEST_F(PowerLimitOperations, ReportsAFailedWrite)
{
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL2);
    EXPECT_EQ(manager->setEcPowerLimit(EC_POWERMODE_PL2, 99), -1);
    EXPECT_EQ(machine.log.lines().last(), "write ecPowerLimit:  99 failed.");
}

TEST_F(PowerLimitOperations, TellsAFailedCheckFromAWrongValue)
{
    setRegister(EC_POWERMODE_PL1_CHECK, 80);
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL1_CHECK, 50), -1);
    EXPECT_EQ(machine.timeline(), QStringList({"25 R 04AB 50"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to check ec powerlimit.", "set ec powerlimit to  50 failed with  80"}));
    machine.faults().switchOn(Fault::FailRead, EC_POWERMODE_PL1_CHECK);
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL1_CHECK, 50), -2);
    EXPECT_EQ(machine.log.lines().last(), "set ec powerlimit to  50 failed when check again.");
}

TEST_F(PowerLimitOperations, GivesTheWholeKvaneByte)
{
    setRegister(EC_KVANE_CHARGING_STATUS, 0xA5);
    EXPECT_EQ(manager->readKvaneChargingStatus(), 0xA5);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"get kvane charging status successed with  165 , status is  true"}));
    machine.faults().switchOn(Fault::FailRead, EC_KVANE_CHARGING_STATUS);
    EXPECT_EQ(manager->readKvaneChargingStatus(), 0);
    EXPECT_EQ(machine.log.lines().last(), "get kvane charging status failed with  255");
}

// The value read back against the value written.
class PowerLimitTolerance : public PowerLimitOperations,
                            public ::testing::WithParamInterface<std::tuple<int, int>>
{ };

TEST_P(PowerLimitTolerance, AcceptsTenWattsEitherWay)
{
    const auto [expected, offset] = GetParam();
    machine.faults().switchOn(Fault::ReadbackOffset, offset);
    const auto watts = static_cast<quint8>(expected);
    ASSERT_EQ(manager->setEcPowerLimit(EC_POWERMODE_PL4, watts), 0);
    const bool accepted = std::abs(offset) <= 10;
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL4_CHECK, watts), accepted ? 0 : -1);
    const int readBack = expected + offset;
    EXPECT_EQ(machine.log.lines().last(),
        accepted ? QString("set ec powerlimit successed with  %1").arg(readBack)
                 : QString("set ec powerlimit to  %1 failed with  %2").arg(expected).arg(readBack));
}

INSTANTIATE_TEST_SUITE_P(Edges, PowerLimitTolerance,
    ::testing::Combine(::testing::Values(12, 75, 90), ::testing::Values(-11, -10, -1, 0, 1, 10, 11)));

TEST_F(PowerLimitOperations, TheToleranceDoesNotWrapAtTheEndsOfAByte)
{
    setRegister(EC_POWERMODE_PL1_CHECK, 250);
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL1_CHECK, 4), -1);
    setRegister(EC_POWERMODE_PL1_CHECK, 0);
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL1_CHECK, 4), 0);
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL1_CHECK, 250), -1);
    setRegister(EC_POWERMODE_PL1_CHECK, 255);
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL1_CHECK, 250), 0);
}

using UnexpectedPowerResults = tarnTest::UnexpectedResultsTest;

TEST_F(UnexpectedPowerResults, OfAWriteAreAFailedWrite)
{
    constexpr int linesBefore = 10; // 2 up to the supply mode, 6 for PL1, 2 up to the write of PL2
    ec->writeResults[EC_POWERMODE_PL2] = -3;
    EXPECT_EQ(manager->setEcPowerModeLow(), -2);
    EXPECT_EQ(machine.log.lines().mid(linesBefore),
        QStringList({"write ecPowerLimit failed with unexpected circumstances.",
            "W: set ec PL2 to  55  failed when write."}));
    EXPECT_EQ(machine.traffic().last(), "R 04AB 0F");
}

TEST_F(UnexpectedPowerResults, OfACheckAreAFailedCheck)
{
    constexpr int linesBefore =
        17; // 2 up to the supply mode, 6 for each of PL1 and PL2, 3 for the write of PL4
    ec->readResults[EC_POWERMODE_PL4_CHECK] = -3;
    EXPECT_EQ(manager->setEcPowerModeBalance(), -1);
    EXPECT_EQ(machine.log.lines().mid(linesBefore),
        QStringList(
            {"ready to check ec powerlimit.", "check ec powerlimit failed with unexpected circumstances.",
                "W: set ec PL4 to  75  failed when check again."}));
    EXPECT_EQ(manager->checkEcPowerLimit(EC_POWERMODE_PL4_CHECK, 75), -2);
    EXPECT_EQ(machine.traffic().last(), "W 04AA 4B");
}

TEST_F(UnexpectedPowerResults, OfTheSupplyModeKeepTheFallback)
{
    ec->readResults[EC_POWER_SUPPLY_MODE] = 1;
    EXPECT_EQ(manager->setEcPowerModeLow(), 0);
    EXPECT_EQ(machine.log.lines().at(1), "Read power supply mode failed with  111");
    EXPECT_EQ(reg(EC_POWERMODE_PL4), 36);
}

TEST_F(UnexpectedPowerResults, OfTheFanModeAreOnlyLogged)
{
    ec->writeResults[EC_FAN_MODE] = -3;
    EXPECT_EQ(manager->setEcPowerModeHigh(), 0);
    EXPECT_EQ(machine.log.lines().last(), "set fan mode failed with  1");
}
