#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::EcPowerModeManager;
using tarnSimulator::Fault;

struct ExpectedLimits
{
    int pl1;
    int pl2;
    int pl4;
};

struct ExpectedProfile
{
    int number;
    const char *name;
    int ecFlag;
    ExpectedLimits fullSupply;
    ExpectedLimits weakSupply;
    ExpectedLimits kvaneCharging;
    ExpectedLimits kvaneNotCharging;
    ExpectedLimits fallback;
    int fanMode;
    int fanModeOnKvane;
};

// What the EC says about the supply, and what a profile then sets.
struct SupplyRow
{
    int supplyMode;
    int kvaneStatus;
    ExpectedLimits ExpectedProfile::*limits;
    int ExpectedProfile::*fanMode;
};

namespace {

constexpr int unread = -1; // this register does not answer
constexpr int unasked = -2; // this register is not to be read

// All profiles a second time, in numbers of their own: the other tests take them from the table of the
// service.
constexpr ExpectedProfile expectedProfiles[] = {
    {0, "high", 4, {45, 55, 75}, {30, 30, 55}, {28, 35, 90}, {15, 28, 50}, {45, 55, 75}, 1, 0},
    {1, "balance", 1, {35, 55, 75}, {28, 30, 55}, {28, 35, 90}, {15, 28, 50}, {28, 30, 55}, 0, 0},
    {2, "low", 2, {15, 55, 75}, {15, 30, 55}, {15, 28, 50}, {12, 15, 35}, {15, 20, 36}, 0, 0},
};
static_assert(std::size(expectedProfiles) == std::size(tarnAccessoryManager::powerProfiles));
static_assert(tarnAccessoryManager::noProfile == 3);

constexpr auto fan = &ExpectedProfile::fanMode;
constexpr auto fanOnKvane = &ExpectedProfile::fanModeOnKvane;
constexpr SupplyRow supplyRows[] = {
    {0, unasked, &ExpectedProfile::fullSupply, fan},
    {1, unasked, &ExpectedProfile::weakSupply, fan},
    {2, unasked, &ExpectedProfile::fullSupply, fan},
    {3, 0, &ExpectedProfile::kvaneNotCharging, fanOnKvane},
    {3, 1, &ExpectedProfile::kvaneCharging, fanOnKvane}, // any bit of the byte counts as charging
    {3, 2, &ExpectedProfile::kvaneCharging, fanOnKvane},
    {3, unread, &ExpectedProfile::kvaneNotCharging, fanOnKvane},
    {4, unasked, &ExpectedProfile::fallback, fan},
    {255, unasked, &ExpectedProfile::fallback, fan},
    {unread, unasked, &ExpectedProfile::fallback, fan},
};

using ProfileOnSupply = std::tuple<ExpectedProfile, SupplyRow>;

std::string profileOnSupplyName(const ::testing::TestParamInfo<ProfileOnSupply> &info)
{
    const auto &[profile, supply] = info.param;
    const auto text = [](int value) {
        return value == unread ? QString("Unread") : QString::number(value);
    };
    QString name = profile.name + QString("Supply") + text(supply.supplyMode);
    if (supply.kvaneStatus != unasked)
        name += "Kvane" + text(supply.kvaneStatus);
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

class PowerLimitsTable : public tarnTest::PowerModeTest, public ::testing::WithParamInterface<ProfileOnSupply>
{
protected:
    const ExpectedProfile &profile = std::get<ExpectedProfile>(GetParam());
    const SupplyRow &supply = std::get<SupplyRow>(GetParam());
    const ExpectedLimits &limits = profile.*supply.limits;
    const int fanMode = profile.*supply.fanMode;

    // The test rows never have both reads fail: the second is not made then.
    void prepareSupply()
    {
        if (supply.supplyMode == unread)
            machine.faults().switchOn(Fault::FailRead, EC_POWER_SUPPLY_MODE);
        else
            setRegister(EC_POWER_SUPPLY_MODE, static_cast<quint8>(supply.supplyMode));
        // A register that must not be read says charging (0xFE): reading it would change the limits.
        if (supply.kvaneStatus == unread)
            machine.faults().switchOn(Fault::FailRead, EC_KVANE_CHARGING_STATUS);
        else
            setRegister(EC_KVANE_CHARGING_STATUS, static_cast<quint8>(supply.kvaneStatus));
    }

    QStringList expectedTimeline() const
    {
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
        read(0x04FC, supply.supplyMode);
        if (supply.kvaneStatus != unasked)
            read(0x06CC, supply.kvaneStatus);
        time += 10;
        const std::tuple<int, int, int> registers[] = {
            {0x04A8, 0x04AB, limits.pl1}, {0x04A9, 0x04AC, limits.pl2}, {0x04AA, 0x04AD, limits.pl4}};
        for (const auto &[address, checkAddress, watts] : registers) {
            access('W', address, watts);
            time += 5;
            access('R', checkAddress, watts);
            time += 10;
        }
        access('W', 0x046E, fanMode);
        return steps;
    }

    QStringList expectedLines() const
    {
        QStringList lines {
            "begin to set ec powermode.", QString("set ec powermode to %1 begin.").arg(profile.name)};
        if (supply.supplyMode == unread)
            lines << tarnTest::unansweredRead << "Read power supply mode failed with  111";
        else
            lines << QString("Read power supply mode successed with  %1").arg(supply.supplyMode);
        if (supply.kvaneStatus == unread)
            lines << tarnTest::unansweredRead << "get kvane charging status failed with  255";
        else if (supply.kvaneStatus != unasked)
            lines << QString("get kvane charging status successed with  %1 , status is  %2")
                         .arg(supply.kvaneStatus)
                         .arg(supply.kvaneStatus == 0 ? "false" : "true");
        const std::pair<const char *, int> named[] = {
            {"PL1", limits.pl1}, {"PL2", limits.pl2}, {"PL4", limits.pl4}};
        for (const auto &[name, watts] : named) {
            lines << "ready to set ec powerlimit." << QString("begin to set ec powerlimit. %1").arg(watts)
                  << QString("write ecPowerLimit:  %1 to EC_POWERMODE_PL.").arg(watts)
                  << "ready to check ec powerlimit."
                  << QString("set ec powerlimit successed with  %1").arg(watts)
                  << QString("set ec %1 successed with  %2").arg(name).arg(watts);
        }
        return lines << QString("set ec powermode to %1 finish, now begin to set fan mode  %2")
                            .arg(profile.name)
                            .arg(fanMode)
                     << QString("set fan mode successed with  %1").arg(fanMode)
                     << QString("set ec powermode to %1 done.").arg(profile.name)
                     << QString("Successfully wrote to the configuration file when set ec powermode to %1 "
                                "successed.")
                            .arg(profile.name);
    }
};

TEST_P(PowerLimitsTable, AppliesTheLimitsOfTheSupply)
{
    prepareSupply();
    const auto start = machine.clock.now();
    EXPECT_EQ(manager->setEcPowerMode(static_cast<quint32>(profile.number)), 0);

    const QStringList expected = expectedTimeline();
    EXPECT_EQ(machine.timeline(), expected);
    // The fan mode's write is the last thing that takes time.
    EXPECT_EQ((machine.clock.now() - start).count(), expected.last().section(' ', 0, 0).toInt());
    EXPECT_EQ(machine.log.lines(), expectedLines());
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(PowerLimits, PowerLimitsTable,
    ::testing::Combine(::testing::ValuesIn(expectedProfiles), ::testing::ValuesIn(supplyRows)),
    profileOnSupplyName);

using PowerProfiles = tarnTest::PowerModeTest;

TEST_F(PowerProfiles, HaveTheirNamesAndFlags)
{
    for (const ExpectedProfile &expected : expectedProfiles) {
        const auto *profile = tarnAccessoryManager::profileOfName(expected.name);
        ASSERT_NE(profile, nullptr) << expected.name;
        EXPECT_EQ(profile->number, expected.number) << expected.name;
        EXPECT_TRUE(manager->setTarnPowerMode(static_cast<quint32>(expected.number)));
        EXPECT_EQ(reg(EC_TARN_POWER_MODE), expected.ecFlag) << expected.name;
        EXPECT_EQ(manager->getTarnPowerMode(), expected.number);
    }
}

TEST_F(PowerProfiles, SomeHaveACallOfTheirOwn)
{
    struct Call
    {
        const char *name;
        int (*apply)(EcPowerModeManager &manager);
    };
    const Call calls[] = {{"high",
                              [](EcPowerModeManager &powerMode) {
                                  return powerMode.setEcPowerModeHigh();
                              }},
        {"balance",
            [](EcPowerModeManager &powerMode) {
                return powerMode.setEcPowerModeBalance();
            }},
        {"low", [](EcPowerModeManager &powerMode) {
             return powerMode.setEcPowerModeLow();
         }}};
    for (const Call &call : calls) {
        const char *name = call.name;
        const auto expected = std::find_if(std::begin(expectedProfiles), std::end(expectedProfiles),
            [name](const ExpectedProfile &profile) { return profile.name == QLatin1String(name); });
        ASSERT_NE(expected, std::end(expectedProfiles)) << name;
        machine.log.clear();
        EXPECT_EQ(call.apply(*manager), 0) << name;
        EXPECT_EQ(machine.log.lines().first(), QString("set ec powermode to %1 begin.").arg(name));
        EXPECT_EQ(reg(EC_POWERMODE_PL1), expected->fullSupply.pl1) << name;
        EXPECT_EQ(reg(EC_POWERMODE_PL2), expected->fullSupply.pl2) << name;
        EXPECT_EQ(reg(EC_POWERMODE_PL4), expected->fullSupply.pl4) << name;
        EXPECT_EQ(reg(EC_FAN_MODE), expected->fanMode) << name;
    }
}

TEST_F(PowerProfiles, ApplyingDoesNotTouchTheProfileFileOrTheKnownProfile)
{
    ASSERT_EQ(manager->setEcPowerModeLow(), 0);
    EXPECT_FALSE(QFile::exists(machine.folder.path(tarnTest::profileFileName)));
    EXPECT_EQ(manager->currentPowerMode(), tarnTest::neverRestored);
}
