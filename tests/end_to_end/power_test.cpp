#include "end_to_end/running_service.h"

#include "accessory/power_profiles.h"
#include "device/ec_registers.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::PowerLimits;
using tarnAccessoryManager::PowerProfile;
using tarnAccessoryManager::powerProfiles;
using tarnAccessoryManager::profileOfName;
using tarnTest::ServiceClient;

class Power : public tarnTest::RunningService
{
protected:
    void SetUp() override
    {
        service.computer().setPowerControl(PL_CTRL_MANUAL); // as a client's start leaves it
        RunningService::SetUp();
    }

    // What the EC has been told: PL1, PL2, PL4 and the fan mode.
    std::array<int, 4> limits()
    {
        return {service.computer().peek(EC_POWERMODE_PL1), service.computer().peek(EC_POWERMODE_PL2),
            service.computer().peek(EC_POWERMODE_PL4), service.computer().peek(EC_FAN_MODE)};
    }
    using Limits = std::array<int, 4>;
    static constexpr Limits all(const PowerLimits &watts, int fanMode)
    {
        return {watts.pl1, watts.pl2, watts.pl4, fanMode};
    }

    static constexpr const PowerProfile &high = *profileOfName("high");
    static constexpr const PowerProfile &balance = *profileOfName("balance");
    static constexpr const PowerProfile &low = *profileOfName("low");
    static QByteArray number(const PowerProfile &profile) { return QByteArray::number(profile.number); }
    // Answers of "first" while there is no profile to tell of.
    static constexpr const char *neverRestored = "-10";
    static constexpr const char *restoreFailed = "-2";
    static constexpr int ownPl1 = 28; // the EC's
    static constexpr const char *profileFile = "powermodeconfig.xml";
};

TEST_F(Power, AppliesAndRemembersEachProfile)
{
    for (const PowerProfile &profile : powerProfiles) {
        EXPECT_EQ(client.answer("powerModeControl", profile.name), "successed");
        EXPECT_EQ(limits(), all(profile.fullSupply, profile.fanMode)) << profile.name;
        EXPECT_EQ(service.read(profileFile), number(profile));
        EXPECT_EQ(client.answer("powerModeControl", "first"), number(profile));
    }
    const QByteArray saved = service.read(profileFile);
    EXPECT_EQ(client.answer("powerModeControl", "turbo"), "failed");
    EXPECT_EQ(client.answer("powerModeControl", "HIGH"), "failed");
    EXPECT_EQ(client.answer("powerModeControl"), "failed");
    EXPECT_EQ(service.read(profileFile), saved);
}

TEST_F(Power, FailsUntilTheClientHasStartedAndOnceItHasEnded)
{
    service.computer().setPowerControl(PL_CTRL_AUTO);
    EXPECT_EQ(client.answer("powerModeControl", "high"), "failed");
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL1_CHECK), ownPl1);
    EXPECT_EQ(service.read(profileFile), "");
    EXPECT_EQ(client.answer("powerModeControl", "first"), number(balance));
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL1_CHECK), high.fullSupply.pl1);

    client.write(R"({"cmd":"powerModeControl","data":"last"})");
    EXPECT_TRUE(service.waitForLog("app is closing now."));
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL1_CHECK), ownPl1);
    EXPECT_EQ(client.answer("powerModeControl", "high"), "failed");
}

TEST_F(Power, FollowsTheSupply)
{
    service.computer().setPowerSupplyMode(1);
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    EXPECT_EQ(limits(), all(high.weakSupply, high.fanMode));
    service.computer().setPowerSupplyMode(3);
    service.computer().setKvaneCharging(1); // any bit counts here
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    EXPECT_EQ(limits(), all(high.kvaneCharging, high.fanModeOnKvane));
}

TEST_F(Power, SurvivesARestartAndTheClientsComingAndGoing)
{
    EXPECT_EQ(client.answer("powerModeControl", "low"), "successed");
    client.leave();
    service.kill(); // a power cut; nothing is written at the end
    service.computer().reset();
    ASSERT_TRUE(service.start());

    ServiceClient next;
    ASSERT_TRUE(next.connectToService());
    EXPECT_EQ(next.answer("powerModeControl", "first"), number(low));
    EXPECT_EQ(limits(), all(low.fullSupply, low.fanMode));
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL_CTRL), PL_CTRL_MANUAL);

    next.write(R"({"cmd":"powerModeControl","data":"last"})");
    EXPECT_TRUE(service.waitForLog("app is closing now."));
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL_CTRL), PL_CTRL_AUTO);
}

TEST_F(Power, RepairsAGarbledFileAtTheClientsStart)
{
    service.write(profileFile, "02");
    EXPECT_EQ(client.answer("powerModeControl", "first"), number(balance));
    EXPECT_EQ(service.read(profileFile), number(balance));
    EXPECT_TRUE(service.log().contains("read from configuration file successed with unexpected data."));
}

TEST_F(Power, KeepsTheFileWhenTheEcSticksInTheMiddle)
{
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    service.breakDown("fail-write", EC_POWERMODE_PL2);
    EXPECT_EQ(client.answer("powerModeControl", "low"), "failed");
    // What was written before the failure stays.
    EXPECT_EQ(
        limits(), (Limits {low.fullSupply.pl1, high.fullSupply.pl2, high.fullSupply.pl4, high.fanMode}));
    EXPECT_EQ(service.read(profileFile), number(high));
    EXPECT_TRUE(
        service.log().contains(QString("set ec PL2 to  %1  failed when write.").arg(low.fullSupply.pl2)));
    service.repair();
    EXPECT_EQ(client.answer("powerModeControl", "low"), "successed");
    EXPECT_EQ(limits(), all(low.fullSupply, low.fanMode));
}

TEST_F(Power, RefusesAReadBackOutOfTolerance)
{
    service.breakDown("readback-offset", 11);
    for (const PowerProfile &profile : powerProfiles)
        EXPECT_EQ(client.answer("powerModeControl", profile.name), "failed") << profile.name;
    EXPECT_EQ(client.answer("powerModeControl", "first"), restoreFailed);
    service.breakDown("readback-offset", -10);
    EXPECT_EQ(client.answer("powerModeControl", "balance"), "successed");
}

TEST_F(Power, AnswersFirstWithTheOldModeWhenControlIsRefused)
{
    service.breakDown("fail-register", EC_POWERMODE_PL_CTRL);
    EXPECT_EQ(client.answer("powerModeControl", "first"), neverRestored);
    service.repair();
    EXPECT_EQ(client.answer("powerModeControl", "first"), number(balance));
}

TEST_F(Power, TellsTheEcTheUsersProfile)
{
    for (const PowerProfile &profile : powerProfiles) {
        EXPECT_EQ(client.answer("setTarnPowerMode", profile.name), "successed");
        EXPECT_EQ(service.computer().peek(EC_TARN_POWER_MODE), profile.ecFlag);
        EXPECT_EQ(client.answer("getTarnPowerMode"), profile.name);
    }
    EXPECT_EQ(client.answer("setTarnPowerMode", "other"), "failed");
    service.computer().setTarnPowerMode(0); // the flag of no profile
    EXPECT_EQ(client.answer("getTarnPowerMode"), "hide");
    service.breakDown("fail-register", EC_TARN_POWER_MODE);
    EXPECT_EQ(client.answer("setTarnPowerMode", "low"), "failed");
    EXPECT_EQ(client.answer("getTarnPowerMode"), "hide");
    service.repair();
    EXPECT_EQ(client.answer("setTarnPowerMode", "low"), "successed");
}

TEST_F(Power, SwitchesSmartCharging)
{
    EXPECT_EQ(client.answer("setSmartChargingStatus", "OFF"), "successed");
    EXPECT_EQ(service.computer().peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_OFF);
    EXPECT_TRUE(service.waitForLog("smart changing timer started?  true"));
    EXPECT_EQ(client.answer("getSmartChargingStatus"), "OFF");
    EXPECT_TRUE(service.waitForLog("smart changing timer is active already."));
    EXPECT_EQ(client.answer("setSmartChargingStatus", "ON"), "successed");
    EXPECT_TRUE(service.waitForLog("smart changing timer is active, now stop it."));
    EXPECT_EQ(client.answer("getSmartChargingStatus"), "ON");
    EXPECT_EQ(client.answer("setSmartChargingStatus", "off"), "failed");
    EXPECT_EQ(client.answer("setSmartChargingStatus"), "failed");
}

TEST_F(Power, AnswersFailedWhileTheEepromFails)
{
    for (const char *fault : {"eeprom-busy", "eeprom-error"}) {
        service.breakDown(fault);
        EXPECT_EQ(client.answer("setSmartChargingStatus", "OFF"), "failed") << fault;
        EXPECT_EQ(client.answer("getSmartChargingStatus"), "failed") << fault;
        service.repair();
        EXPECT_EQ(client.answer("getSmartChargingStatus"), "ON") << fault;
    }
}
