#include "client/tarnctl/interrupt_flag.h"

#include <gtest/gtest.h>

#include <csignal>

// Windows takes a handler away when it calls it.
TEST(InterruptFlagTest, StandsEachInterruption)
{
    const tarnctl::InterruptFlag flag;
    EXPECT_FALSE(flag.isRaised());
    for (const int number : {SIGINT, SIGINT, SIGTERM, SIGTERM}) {
        std::raise(number);
        EXPECT_TRUE(flag.isRaised());
    }
}
