#include "platform/waits.h"

#include "support/virtual_clock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <ctime>

using namespace std::chrono_literals;
using tarnPlatform::pumpEventsFor;
using tarnPlatform::sleepFor;
using tarnTest::VirtualClock;

TEST(Waits, TakeTheirTimeOnTheRealClock)
{
    QElapsedTimer timer;
    timer.start();
    sleepFor(5ms);
    EXPECT_GE(timer.elapsed(), 5);
    timer.restart();
    pumpEventsFor(60ms);
    EXPECT_GE(timer.elapsed(), 59);
}

TEST(Waits, ServeEventsMeanwhile)
{
    bool served = false;
    QTimer::singleShot(10ms, [&served] { served = true; });
    pumpEventsFor(100ms);
    EXPECT_TRUE(served);
}

TEST(Waits, DoNotSpinACore)
{
    const std::clock_t before = std::clock();
    pumpEventsFor(400ms);
    const double cpuMs = 1000.0 * static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    EXPECT_LT(cpuMs, 100);
}

TEST(Waits, AreCutShortByTheirPredicate)
{
    QElapsedTimer timer;
    timer.start();
    bool enough = false;
    QTimer::singleShot(20ms, [&enough] { enough = true; });
    pumpEventsFor(20s, [&enough] { return enough; });
    EXPECT_LT(timer.elapsed(), 10000);
}

TEST(Waits, PassOnAVirtualClock)
{
    VirtualClock clock;
    sleepFor(5ms);
    pumpEventsFor(4000ms);
    EXPECT_EQ(clock.now(), 4005ms);
    EXPECT_EQ(clock.waits(), std::vector<int>({5, 4000}));
}

TEST(Waits, ThatWouldCrossMidnightEndAtOnce)
{
    VirtualClock clock;
    clock.setTimeOfDay(QTime(23, 59, 57));
    pumpEventsFor(4000ms);
    EXPECT_EQ(clock.now(), 0ms);
    clock.setTimeOfDay(QTime(23, 59, 55));
    pumpEventsFor(4000ms);
    EXPECT_EQ(clock.now(), 4000ms);
}

namespace {

// Handles few events at a time, as when many of them arrive.
class BusyClock : public VirtualClock
{
public:
    void processEvents(std::chrono::milliseconds atMost) override { sleep(std::min(atMost, 100ms)); }
};

} // namespace

TEST(Waits, AreNotStretchedByAClockThatIsSetBack)
{
    BusyClock clock;
    clock.at(1000ms, [&clock] { clock.setTimeOfDay(QTime(5, 0)); });
    pumpEventsFor(4000ms);
    EXPECT_EQ(clock.now(), 4000ms);
}

TEST(Waits, EndWhenTheClockIsSetForward)
{
    BusyClock clock;
    clock.at(1000ms, [&clock] { clock.setTimeOfDay(QTime(20, 0)); });
    pumpEventsFor(4000ms);
    EXPECT_EQ(clock.now(), 1000ms);
}
