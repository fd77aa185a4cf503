#include "service/start_delay.h"

#include "support/virtual_clock.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>

using namespace std::chrono_literals;

TEST(StartDelay, IsFourSecondsInWhichEventsAreHandled)
{
    tarnTest::VirtualClock clock;
    int handled = 0;
    const auto later = [&handled] {
        QMetaObject::invokeMethod(
            qApp, [&handled] { ++handled; }, Qt::QueuedConnection);
    };
    later();
    clock.at(4000ms, later); // at its end
    EXPECT_TRUE(waitForSystem());
    EXPECT_EQ(clock.now(), 4000ms);
    EXPECT_EQ(handled, 1);
}

TEST(StartDelay, EndsWhenTheProcessIsAskedToEnd)
{
    tarnTest::VirtualClock clock;
    EXPECT_TRUE(waitForSystem());
    std::raise(SIGTERM);
    EXPECT_FALSE(waitForSystem());
    EXPECT_EQ(clock.now(), 4000ms);
}
