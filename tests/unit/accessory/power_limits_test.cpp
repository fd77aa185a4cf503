#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::EcPowerModeManager;
using tarnSimulator::Fault;

// The limits and the fan mode of one profile on one kind of supply.
struct LimitRow
{
    const char *profile;
    int supplyMode;
    int kvaneStatus;
    int pl1;
    int pl2;
    int pl4;
    int fanMode;
};

namespace {

constexpr int unread = -1; // this register does not answer
constexpr int unasked = -2; // this register is not to be read

const LimitRow limitRows[] = {
    {"high", 0, unasked, 45, 55, 75, 1},
    {"high", 1, unasked, 30, 30, 55, 1},
    {"high", 2, unasked, 45, 55, 75, 1},
    {"high", 3, 0, 15, 28, 50, 0},
    {"high", 3, 1, 28, 35, 90, 0}, // any bit of the byte counts as charging
    {"high", 3, 2, 28, 35, 90, 0},
    {"high", 3, unread, 15, 28, 50, 0},
    {"high", 4, unasked, 45, 55, 75, 1},
    {"high", 255, unasked, 45, 55, 75, 1},
    {"high", unread, unasked, 45, 55, 75, 1},
    {"balance", 0, unasked, 35, 55, 75, 0},
    {"balance", 1, unasked, 28, 30, 55, 0},
    {"balance", 2, unasked, 35, 55, 75, 0},
    {"balance", 3, 0, 15, 28, 50, 0},
    {"balance", 3, 1, 28, 35, 90, 0},
    {"balance", 3, 2, 28, 35, 90, 0},
    {"balance", 3, unread, 15, 28, 50, 0},
    {"balance", 4, unasked, 28, 30, 55, 0},
    {"balance", 255, unasked, 28, 30, 55, 0},
    {"balance", unread, unasked, 28, 30, 55, 0},
    {"low", 0, unasked, 15, 55, 75, 0},
    {"low", 1, unasked, 15, 30, 55, 0},
    {"low", 2, unasked, 15, 55, 75, 0},
    {"low", 3, 0, 12, 15, 35, 0},
    {"low", 3, 1, 15, 28, 50, 0},
    {"low", 3, 2, 15, 28, 50, 0},
    {"low", 3, unread, 12, 15, 35, 0},
    {"low", 4, unasked, 15, 20, 36, 0},
    {"low", 255, unasked, 15, 20, 36, 0},
    {"low", unread, unasked, 15, 20, 36, 0},
};

std::string limitRowName(const ::testing::TestParamInfo<LimitRow> &row)
{
    const auto text = [](int value) {
        return value == unread ? QString("Unread") : QString::number(value);
    };
    QString name = row.param.profile + QString("Supply") + text(row.param.supplyMode);
    if (row.param.kvaneStatus != unasked)
        name += "Kvane" + text(row.param.kvaneStatus);
    return name.toStdString();
}

QString registerAccess(int time, char kind, int address, int value)
{
    return QString("%1 %2 %3 %4")
        .arg(time)
        .arg(QLatin1Char(kind))
        .arg(address, 4, 16, QLatin1Char('0'))
        .arg(value, 2, 16, QLatin1Char('0'))
        .toUpper();
}

} // namespace

class PowerLimitsTable : public tarnTest::PowerModeTest, public ::testing::WithParamInterface<LimitRow>
{
protected:
    int apply()
    {
        const QString profile = GetParam().profile;
        return profile == "high"   ? manager->setEcPowerModeHigh()
            : profile == "balance" ? manager->setEcPowerModeBalance()
                                   : manager->setEcPowerModeLow();
    }

    // The test rows never have both reads fail: the second is not made then.
    void prepareSupply()
    {
        const LimitRow &row = GetParam();
        if (row.supplyMode == unread)
            machine.faults().switchOn(Fault::FailRead, EC_POWER_SUPPLY_MODE);
        else
            setRegister(EC_POWER_SUPPLY_MODE, static_cast<quint8>(row.supplyMode));
        // A register that must not be read says charging (0xFE): reading it would change the limits.
        if (row.kvaneStatus == unread)
            machine.faults().switchOn(Fault::FailRead, EC_KVANE_CHARGING_STATUS);
        else
            setRegister(EC_KVANE_CHARGING_STATUS, static_cast<quint8>(row.kvaneStatus));
    }

    QStringList expectedTimeline() const
    {
        const LimitRow &row = GetParam();
        QStringList steps;
        int time = 0;
        const auto access = [&](char kind, int address, int value) {
            time += tarnTest::accessTime;
            steps << registerAccess(time, kind, address, value);
        };
        const auto read = [&](int address, int value) {
            if (value == unread)
                time += tarnTest::unansweredReadTime;
            else
                access('R', address, value);
        };
        read(0x04FC, row.supplyMode);
        if (row.kvaneStatus != unasked)
            read(0x06CC, row.kvaneStatus);
        time += 10;
        const std::tuple<int, int, int> limits[] = {
            {0x04A8, 0x04AB, row.pl1}, {0x04A9, 0x04AC, row.pl2}, {0x04AA, 0x04AD, row.pl4}};
        for (const auto &[address, checkAddress, watts] : limits) {
            access('W', address, watts);
            time += 5;
            access('R', checkAddress, watts);
            time += 10;
        }
        access('W', 0x046E, row.fanMode);
        return steps;
    }

    QStringList expectedLines() const
    {
        const LimitRow &row = GetParam();
        QStringList lines {QString("set ec powermode to %1 begin.").arg(row.profile)};
        if (row.supplyMode == unread)
            lines << tarnTest::unansweredRead << "Read power supply mode failed with  111";
        else
            lines << QString("Read power supply mode successed with  %1").arg(row.supplyMode);
        if (row.kvaneStatus == unread)
            lines << tarnTest::unansweredRead << "get kvane charging status failed with  255";
        else if (row.kvaneStatus != unasked)
            lines << QString("get kvane charging status successed with  %1 , status is  %2")
                         .arg(row.kvaneStatus)
                         .arg(row.kvaneStatus == 0 ? "false" : "true");
        const std::pair<const char *, int> limits[] = {{"PL1", row.pl1}, {"PL2", row.pl2}, {"PL4", row.pl4}};
        for (const auto &[name, watts] : limits) {
            lines << "ready to set ec powerlimit." << QString("begin to set ec powerlimit. %1").arg(watts)
                  << QString("write ecPowerLimit:  %1 to EC_POWERMODE_PL.").arg(watts)
                  << "ready to check ec powerlimit."
                  << QString("set ec powerlimit successed with  %1").arg(watts)
                  << QString("set ec %1 successed with  %2").arg(name).arg(watts);
        }
        return lines << QString("set ec powermode to %1 finish, now begin to set fan mode  %2")
                            .arg(row.profile)
                            .arg(row.fanMode)
                     << QString("set fan mode successed with  %1").arg(row.fanMode);
    }
};

TEST_P(PowerLimitsTable, AppliesTheLimitsOfTheSupply)
{
    prepareSupply();
    const auto start = machine.clock.now();
    EXPECT_EQ(apply(), 0);

    const QStringList expected = expectedTimeline();
    EXPECT_EQ(machine.timeline(), expected);
    // The fan mode's write is the last thing that takes time.
    EXPECT_EQ((machine.clock.now() - start).count(), expected.last().section(' ', 0, 0).toInt());
    EXPECT_EQ(machine.log.lines(), expectedLines());
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(PowerLimits, PowerLimitsTable, ::testing::ValuesIn(limitRows), limitRowName);

using PowerProfiles = tarnTest::PowerModeTest;

TEST_F(PowerProfiles, TheFirstProfileTakesExactlyThisLong)
{
    EXPECT_EQ(manager->setEcPowerModeHigh(), 0);
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 R 04FC 00", "50 W 04A8 2D", "75 R 04AB 2D", "105 W 04A9 37", "130 R 04AC 37",
            "160 W 04AA 4B", "185 R 04AD 4B", "215 W 046E 01"}));
    EXPECT_EQ(elapsed(), 215);
}

TEST_F(PowerProfiles, AnotherProfileReplacesTheFanModeToo)
{
    ASSERT_EQ(manager->setEcPowerModeHigh(), 0);
    EXPECT_EQ(reg(EC_FAN_MODE), 1);
    ASSERT_EQ(manager->setEcPowerModeLow(), 0);
    EXPECT_EQ(reg(EC_FAN_MODE), 0);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), 15);
}

TEST_F(PowerProfiles, ASupplyChangeCountsFromTheNextApplication)
{
    ASSERT_EQ(manager->setEcPowerModeHigh(), 0);
    setRegister(EC_POWER_SUPPLY_MODE, 3);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), 45);
    ASSERT_EQ(manager->setEcPowerModeHigh(), 0);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), 15);
    EXPECT_EQ(reg(EC_FAN_MODE), 0);
}

TEST_F(PowerProfiles, ApplyingDoesNotTouchTheProfileFileOrTheKnownProfile)
{
    ASSERT_EQ(manager->setEcPowerModeLow(), 0);
    EXPECT_FALSE(QFile::exists(machine.folder.path(tarnTest::profileFileName)));
    EXPECT_EQ(manager->currentPowerMode(), -10);
}
