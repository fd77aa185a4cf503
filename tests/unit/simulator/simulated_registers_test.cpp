#include "ec_host.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

using namespace tarnDeviceInfos;
using tarnSimulatorTest::EcHost;

class SimulatedPlainRegister : public ::testing::TestWithParam<std::uint16_t>
{ };

TEST_P(SimulatedPlainRegister, KeepsWhatTheHostWrites)
{
    EcHost host;
    ASSERT_TRUE(host.write(GetParam(), 0x64));
    host.nowMs += 10000;
    EXPECT_EQ(host.read(GetParam()), 0x64);
}

INSTANTIATE_TEST_SUITE_P(All, SimulatedPlainRegister,
    ::testing::Values(EC_FAN_MODE, EC_POWERMODE_PL_CTRL, EC_TARN_POWER_MODE, EC_MCU_UPDATE_CTRL,
        XEC_APP_EVENT, XEC_APP_CMD_DATA0, XEC_RGB_GREEN, XEC_RGB_BLUE, EEP_DATA, EEP_ADDR_LO, EEP_ADDR_HI,
        EEP_LEN));

TEST(SimulatedPowerLimits, EachLimitAppearsInItsOwnReadBack)
{
    EcHost host;
    ASSERT_TRUE(host.write(EC_POWERMODE_PL_CTRL, PL_CTRL_MANUAL));
    ASSERT_TRUE(host.write(EC_POWERMODE_PL1, 45));
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 45);
    EXPECT_EQ(host.read(EC_POWERMODE_PL2_CHECK), 30);

    ASSERT_TRUE(host.write(EC_POWERMODE_PL2, 56));
    EXPECT_EQ(host.read(EC_POWERMODE_PL2_CHECK), 56);

    ASSERT_TRUE(host.write(EC_POWERMODE_PL4, 75));
    EXPECT_EQ(host.read(EC_POWERMODE_PL4_CHECK), 75);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 45);
}

// Without manual control the host's limits have no effect.
TEST(SimulatedPowerLimits, AreTheEcsOwnUnlessTheHostHasControl)
{
    EcHost host;
    const auto inForce = [&host] {
        return std::vector<std::optional<std::uint8_t>> {host.read(EC_POWERMODE_PL1_CHECK),
            host.read(EC_POWERMODE_PL2_CHECK), host.read(EC_POWERMODE_PL4_CHECK)};
    };
    using Limits = std::vector<std::optional<std::uint8_t>>;
    const Limits automatic {28, 30, 55};
    const Limits ofHost {45, 56, 75};
    EXPECT_EQ(inForce(), automatic);
    ASSERT_TRUE(host.write(EC_POWERMODE_PL1, 45));
    ASSERT_TRUE(host.write(EC_POWERMODE_PL2, 56));
    ASSERT_TRUE(host.write(EC_POWERMODE_PL4, 75));
    EXPECT_EQ(host.read(EC_POWERMODE_PL1), 45);
    EXPECT_EQ(inForce(), automatic);

    ASSERT_TRUE(host.write(EC_POWERMODE_PL_CTRL, PL_CTRL_MANUAL));
    EXPECT_EQ(inForce(), ofHost);
    ASSERT_TRUE(host.write(EC_POWERMODE_PL_CTRL, PL_CTRL_AUTO));
    EXPECT_EQ(inForce(), automatic);
    ASSERT_TRUE(host.write(EC_POWERMODE_PL_CTRL, PL_CTRL_UNLIMITED));
    EXPECT_EQ(inForce(), (Limits {255, 255, 255}));
    host.computer.setPowerControl(PL_CTRL_MANUAL);
    EXPECT_EQ(inForce(), ofHost);
    host.computer.reset();
    EXPECT_EQ(inForce(), automatic);
}
