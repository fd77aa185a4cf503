#include "platform/waits.h"

#include <QEventLoop>
#include <QTimer>

#include <atomic>

namespace tarnPlatform {
namespace {

std::atomic<WaitClock *> installedClock {nullptr};

WaitClock &waitClock()
{
    static WaitClock machineClock;
    WaitClock *clock = installedClock.load();
    return clock ? *clock : machineClock;
}

} // namespace

void WaitClock::sleep(milliseconds duration)
{
    systemSleep(duration);
}

QTime WaitClock::timeOfDay()
{
    return QTime::currentTime();
}

milliseconds WaitClock::steadyTime()
{
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

void WaitClock::processEvents(milliseconds atMost)
{
    // The timer ends the wait; processEvents alone would keep a core busy while nothing happens.
    QTimer wakeUp;
    wakeUp.setSingleShot(true);
    wakeUp.setTimerType(Qt::PreciseTimer);
    wakeUp.start(atMost);
    QEventLoop().processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void sleepFor(milliseconds duration)
{
    waitClock().sleep(duration);
}

void pumpEventsFor(milliseconds duration, const std::function<bool()> &endsEarly)
{
    WaitClock &clock = waitClock();
    const QTime deadline = clock.timeOfDay().addMSecs(static_cast<int>(duration.count()));
    const milliseconds guard = clock.steadyTime() + duration;
    while (clock.timeOfDay() < deadline) {
        const milliseconds left = guard - clock.steadyTime();
        if (left <= milliseconds::zero() || (endsEarly && endsEarly()))
            return;
        clock.processEvents(left);
    }
}

milliseconds steadyNow()
{
    return waitClock().steadyTime();
}

WaitClock *setWaitClock(WaitClock *clock)
{
    return installedClock.exchange(clock);
}

} // namespace tarnPlatform
