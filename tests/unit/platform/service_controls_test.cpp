#include "platform/service_manager.h"

#include <gtest/gtest.h>

using namespace tarnPlatform;

// The numbers are fixed by the system: with a wrong one the service would obey another control.
TEST(ServiceControls, HaveTheSystemsNumbers)
{
    EXPECT_EQ(ControlStop, 1U);
    EXPECT_EQ(ControlPause, 2U);
    EXPECT_EQ(ControlContinue, 3U);
    EXPECT_EQ(ControlInterrogate, 4U);
    EXPECT_EQ(ControlShutdown, 5U);
    EXPECT_EQ(AcceptsStop, 0x1U);
    EXPECT_EQ(AcceptsPauseAndContinue, 0x2U);
    EXPECT_EQ(AcceptsShutdown, 0x4U);
}

TEST(ServiceControls, SendUserCommandsAsTheNumbersFrom128On)
{
    EXPECT_EQ(userControl(0), 128U);
    EXPECT_EQ(userControl(5), 133U);
    EXPECT_EQ(userControl(127), 255U);
    EXPECT_TRUE(isUserCommand(0));
    EXPECT_TRUE(isUserCommand(127));
    EXPECT_FALSE(isUserCommand(-1));
    EXPECT_FALSE(isUserCommand(128));
}
