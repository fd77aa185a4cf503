#pragma once

#include "platform/waits.h"

#include <QMutex>

#include <atomic>
#include <functional>
#include <map>
#include <vector>

namespace tarnTest {

using std::chrono::milliseconds;

// A clock on which waiting takes no time: each wait moves it on and is noted. What is planned for an instant
// happens when a wait reaches it, on the thread that waits. Installed for as long as the object lives.
class VirtualClock : public tarnPlatform::WaitClock
{
public:
    VirtualClock();
    ~VirtualClock() override;

    void sleep(milliseconds duration) override;
    QTime timeOfDay() override;
    milliseconds steadyTime() override
    {
        ++steadyLooks;
        return now();
    }
    void processEvents(milliseconds atMost) override;

    [[nodiscard]] milliseconds now() const;
    // How often the steady time, which no change of the clock moves, has been read.
    std::atomic<int> steadyLooks {0};
    // Does something once the clock has come that far (counted from its start).
    void at(milliseconds instant, std::function<void()> action);
    // Sets the time of day, which otherwise starts at ten in the morning.
    void setTimeOfDay(QTime time);
    // The lengths of all waits so far, in order.
    [[nodiscard]] std::vector<int> waits() const;
    void forgetWaits();
    // What a wait calls besides moving the clock on.
    std::function<void(milliseconds)> onWait;

private:
    void advance(milliseconds duration);

    mutable QMutex mutex;
    milliseconds elapsed {0};
    QTime midnightOffset {10, 0};
    milliseconds offsetSetAt {0};
    std::multimap<milliseconds, std::function<void()>> planned;
    std::vector<int> noted;
};

} // namespace tarnTest
