#pragma once

#include <QTime>

#include <chrono>
#include <functional>

// Every sleep of the service and every wait that handles events goes through this header, so that whole
// hardware sequences can run on a clock on which waiting takes no time.
namespace tarnPlatform {

using std::chrono::milliseconds;

// The clock that all waits use. The default is the machine's own time; any thread may call it.
class WaitClock
{
public:
    virtual ~WaitClock() = default;
    virtual void sleep(milliseconds duration);
    virtual QTime timeOfDay();
    virtual milliseconds steadyTime();
    // Handles the calling thread's events, waiting for them for at most the given time.
    virtual void processEvents(milliseconds atMost);
};

// Blocks the calling thread.
void sleepFor(milliseconds duration);

// Handles the calling thread's events until the time of day has moved on by the duration, or until endsEarly
// (if given) returns true. The deadline wraps at midnight, so a wait that would cross it does not wait at
// all; a clock that is set back cannot stretch the wait.
void pumpEventsFor(milliseconds duration, const std::function<bool()> &endsEarly = {});

// Time since some instant, which no change of the computer's clock moves.
[[nodiscard]] milliseconds steadyNow();

// The sleep of the machine's own clock, exact to a millisecond: the EC's 5 ms waits must not become a 15.6 ms
// scheduler tick.
void systemSleep(milliseconds duration);

// Installs another clock (null: the machine's own again) and returns the one before, null for the machine's.
WaitClock *setWaitClock(WaitClock *clock);

} // namespace tarnPlatform
