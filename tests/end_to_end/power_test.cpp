#include "end_to_end/running_service.h"

#include "device/ec_registers.h"

using namespace tarnDeviceInfos;
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
};

TEST_F(Power, AppliesAndRemembersEachProfile)
{
    const std::tuple<const char *, Limits, const char *> profiles[] = {
        {"high", {45, 55, 75, 1}, "0"}, {"balance", {35, 55, 75, 0}, "1"}, {"low", {15, 55, 75, 0}, "2"}};
    for (const auto &[name, expected, saved] : profiles) {
        EXPECT_EQ(client.answer("powerModeControl", name), "successed");
        EXPECT_EQ(limits(), expected) << name;
        EXPECT_EQ(service.read("powermodeconfig.xml"), saved);
    }
    EXPECT_EQ(client.answer("powerModeControl", "turbo"), "failed");
    EXPECT_EQ(client.answer("powerModeControl", "HIGH"), "failed");
    EXPECT_EQ(client.answer("powerModeControl"), "failed");
    EXPECT_EQ(service.read("powermodeconfig.xml"), "2");
}

TEST_F(Power, FailsUntilTheClientHasStartedAndOnceItHasEnded)
{
    service.computer().setPowerControl(PL_CTRL_AUTO);
    EXPECT_EQ(client.answer("powerModeControl", "high"), "failed");
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL1_CHECK), 28); // the EC's own limit
    EXPECT_EQ(service.read("powermodeconfig.xml"), "");
    EXPECT_EQ(client.answer("powerModeControl", "first"), "1");
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL1_CHECK), 45);

    client.write(R"({"cmd":"powerModeControl","data":"last"})");
    EXPECT_TRUE(service.waitForLog("app is closing now."));
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL1_CHECK), 28);
    EXPECT_EQ(client.answer("powerModeControl", "high"), "failed");
}

TEST_F(Power, FollowsTheSupply)
{
    service.computer().setPowerSupplyMode(1);
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    EXPECT_EQ(limits(), (Limits {30, 30, 55, 1}));
    service.computer().setPowerSupplyMode(3);
    service.computer().setKvaneCharging(1); // any bit counts here
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    EXPECT_EQ(limits(), (Limits {28, 35, 90, 0}));
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
    EXPECT_EQ(next.answer("powerModeControl", "first"), "2");
    EXPECT_EQ(limits(), (Limits {15, 55, 75, 0}));
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL_CTRL), PL_CTRL_MANUAL);

    next.write(R"({"cmd":"powerModeControl","data":"last"})");
    EXPECT_TRUE(service.waitForLog("app is closing now."));
    EXPECT_EQ(service.computer().peek(EC_POWERMODE_PL_CTRL), PL_CTRL_AUTO);
}

TEST_F(Power, RepairsAGarbledFileAtTheClientsStart)
{
    service.write("powermodeconfig.xml", "02");
    EXPECT_EQ(client.answer("powerModeControl", "first"), "1");
    EXPECT_EQ(service.read("powermodeconfig.xml"), "1");
    EXPECT_TRUE(service.log().contains("read from configuration file successed with unexpected data."));
}

TEST_F(Power, KeepsTheFileWhenTheEcSticksInTheMiddle)
{
    EXPECT_EQ(client.answer("powerModeControl", "high"), "successed");
    service.breakDown("fail-write", EC_POWERMODE_PL2);
    EXPECT_EQ(client.answer("powerModeControl", "low"), "failed");
    EXPECT_EQ(limits(), (Limits {15, 55, 75, 1})); // what was written before the failure stays
    EXPECT_EQ(service.read("powermodeconfig.xml"), "0");
    EXPECT_TRUE(service.log().contains("set ec PL2 to  55  failed when write."));
    service.repair();
    EXPECT_EQ(client.answer("powerModeControl", "low"), "successed");
    EXPECT_EQ(limits(), (Limits {15, 55, 75, 0}));
}

TEST_F(Power, RefusesAReadBackOutOfTolerance)
{
    service.breakDown("readback-offset", 11);
    EXPECT_EQ(client.answer("powerModeControl", "balance"), "failed");
    EXPECT_EQ(client.answer("powerModeControl", "first"), "-2");
    service.breakDown("readback-offset", -10);
    EXPECT_EQ(client.answer("powerModeControl", "balance"), "successed");
}

TEST_F(Power, AnswersFirstWithTheOldModeWhenControlIsRefused)
{
    service.breakDown("fail-register", EC_POWERMODE_PL_CTRL);
    EXPECT_EQ(client.answer("powerModeControl", "first"), "-10");
    service.repair();
    EXPECT_EQ(client.answer("powerModeControl", "first"), "1");
}

TEST_F(Power, TellsTheEcTheUsersProfile)
{
    const std::pair<const char *, int> flags[] = {{"high", 4}, {"balance", 1}, {"low", 2}};
    for (const auto &[name, flag] : flags) {
        EXPECT_EQ(client.answer("setTarnPowerMode", name), "successed");
        EXPECT_EQ(service.computer().peek(EC_TARN_POWER_MODE), flag);
        EXPECT_EQ(client.answer("getTarnPowerMode"), name);
    }
    EXPECT_EQ(client.answer("setTarnPowerMode", "other"), "failed");
    service.computer().setTarnPowerMode(0);
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
