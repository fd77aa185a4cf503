#include "end_to_end/running_service.h"

#include "accessory/power_profiles.h"
#include "device/ec_registers.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::PowerLimits;
using tarnAccessoryManager::PowerProfile;
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
    static constexpr const char *profileFile = "powermodeconfig.xml";
};

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
