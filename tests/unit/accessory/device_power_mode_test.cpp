#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::noProfile;
using tarnAccessoryManager::PowerProfile;
using tarnAccessoryManager::powerProfiles;
using tarnSimulator::Fault;
using tarnTest::highProfile;
using tarnTest::numberBeyondProfiles;

using DevicePowerMode = tarnTest::PowerModeTest;

struct FlagReading
{
    int flag;
    int profile;
    QString line;
};

struct FlagWriting
{
    quint32 profile;
    QString flag;
};

namespace {

constexpr const char *unknownFlag = "64";

QString hexByte(int value)
{
    return QString("%1").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

std::vector<FlagReading> flagReadings()
{
    std::vector<FlagReading> rows;
    for (const PowerProfile &profile : powerProfiles)
        rows.push_back({profile.ecFlag, profile.number, QString("tarn power mode is %1.").arg(profile.name)});
    for (const int flag : {0, 3, 5, 0x64, 255})
        rows.push_back({flag, noProfile, "tarn power mode is other."});
    return rows;
}

std::vector<FlagWriting> flagWritings()
{
    std::vector<FlagWriting> rows;
    for (const PowerProfile &profile : powerProfiles)
        rows.push_back({static_cast<quint32>(profile.number), hexByte(profile.ecFlag)});
    for (const quint32 number : {3U, numberBeyondProfiles, 99U, 256U, 0xFFFFFFFFU})
        rows.push_back({number, unknownFlag});
    return rows;
}

} // namespace

class DevicePowerModeReadings : public DevicePowerMode, public ::testing::WithParamInterface<FlagReading>
{ };

TEST_P(DevicePowerModeReadings, TranslatesTheFlag)
{
    setRegister(EC_TARN_POWER_MODE, static_cast<quint8>(GetParam().flag));
    EXPECT_EQ(manager->getTarnPowerMode(), GetParam().profile);
    EXPECT_EQ(machine.timeline(), QStringList({QString("20 R 04FE ") + hexByte(GetParam().flag)}));
    EXPECT_EQ(elapsed(), 20);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to get tarn power mode.", "begin to get tarn power mode.",
            QString("get tarn power mode successed, mode flag is  %1").arg(GetParam().flag),
            GetParam().line}));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Flags, DevicePowerModeReadings, ::testing::ValuesIn(flagReadings()),
    [](const auto &row) { return "Flag" + std::to_string(row.param.flag); });

class DevicePowerModeWritings : public DevicePowerMode, public ::testing::WithParamInterface<FlagWriting>
{ };

TEST_P(DevicePowerModeWritings, TranslatesTheProfileAndReadsItBack)
{
    setRegister(EC_TARN_POWER_MODE, 0);
    EXPECT_TRUE(manager->setTarnPowerMode(GetParam().profile));
    EXPECT_EQ(machine.timeline(),
        QStringList({QString("20 W 04FE ") + GetParam().flag, QString("50 R 04FE ") + GetParam().flag}));
    EXPECT_EQ(elapsed(), 50);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to set tarn power mode.", "begin to set tarn power mode.",
            QString("set tarn power mode successed with  %1").arg(GetParam().profile)}));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Profiles, DevicePowerModeWritings, ::testing::ValuesIn(flagWritings()),
    [](const auto &row) { return "Profile" + std::to_string(row.param.profile); });

TEST_F(DevicePowerMode, AFlagThatCannotBeReadIsOther)
{
    machine.faults().switchOn(Fault::FailRead, EC_TARN_POWER_MODE);
    EXPECT_EQ(manager->getTarnPowerMode(), noProfile);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to get tarn power mode.", "begin to get tarn power mode."})
            + tarnTest::unansweredRead + QStringList({"get tarn power mode failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(DevicePowerMode, AFailedWriteIsNotReadBack)
{
    machine.faults().switchOn(Fault::FailWrite, EC_TARN_POWER_MODE);
    EXPECT_FALSE(manager->setTarnPowerMode(highProfile));
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(reg(EC_TARN_POWER_MODE), TARN_POWER_MODE_BALANCE);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to set tarn power mode.", "begin to set tarn power mode.",
            "set tarn power mode failed when write setVar."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(DevicePowerMode, AFailedReadBackFails)
{
    machine.faults().switchOn(Fault::FailRead, EC_TARN_POWER_MODE);
    EXPECT_FALSE(manager->setTarnPowerMode(highProfile));
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04FE 04"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to set tarn power mode.", "begin to set tarn power mode."})
            + tarnTest::unansweredRead + QStringList({"set tarn power mode failed when read getVar."}));
    EXPECT_TRUE(lockHeldThroughout());
}

// What an unknown request writes is also what stands before the read-back: a failed one must not pass for it.
TEST_F(DevicePowerMode, AFailedReadBackOfAnUnknownRequestFailsToo)
{
    machine.faults().switchOn(Fault::FailRead, EC_TARN_POWER_MODE);
    EXPECT_FALSE(manager->setTarnPowerMode(numberBeyondProfiles));
}

TEST_F(DevicePowerMode, AnotherFlagThanWrittenFails)
{
    machine.clock.at(
        tarnTest::milliseconds(25), [this] { setRegister(EC_TARN_POWER_MODE, TARN_POWER_MODE_LOW); });
    EXPECT_FALSE(manager->setTarnPowerMode(highProfile));
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04FE 04", "50 R 04FE 02"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"ready to set tarn power mode.", "begin to set tarn power mode.",
            "set tarn power mode failed, setVar != getVar."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(DevicePowerMode, AnECThatDropsAnUnknownFlagFails)
{
    machine.clock.at(tarnTest::milliseconds(25), [this] { setRegister(EC_TARN_POWER_MODE, 0); });
    EXPECT_FALSE(manager->setTarnPowerMode(numberBeyondProfiles));
}
