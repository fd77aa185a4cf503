#include "support/virtual_clock.h"

#include <QCoreApplication>

namespace tarnTest {

VirtualClock::VirtualClock()
{
    tarnPlatform::setWaitClock(this);
}

VirtualClock::~VirtualClock()
{
    tarnPlatform::setWaitClock(nullptr);
}

void VirtualClock::sleep(milliseconds duration)
{
    if (onWait)
        onWait(duration);
    advance(duration);
}

QTime VirtualClock::timeOfDay()
{
    const QMutexLocker locker(&mutex);
    return midnightOffset.addMSecs(static_cast<int>((elapsed - offsetSetAt).count()));
}

void VirtualClock::processEvents(milliseconds atMost)
{
    QCoreApplication::processEvents();
    advance(atMost);
}

milliseconds VirtualClock::now() const
{
    const QMutexLocker locker(&mutex);
    return elapsed;
}

void VirtualClock::at(milliseconds instant, std::function<void()> action)
{
    const QMutexLocker locker(&mutex);
    planned.emplace(instant, std::move(action));
}

void VirtualClock::setTimeOfDay(QTime time)
{
    const QMutexLocker locker(&mutex);
    midnightOffset = time;
    offsetSetAt = elapsed;
}

std::vector<int> VirtualClock::waits() const
{
    const QMutexLocker locker(&mutex);
    return noted;
}

void VirtualClock::forgetWaits()
{
    const QMutexLocker locker(&mutex);
    noted.clear();
}

void VirtualClock::advance(milliseconds duration)
{
    QMutexLocker locker(&mutex);
    noted.push_back(static_cast<int>(duration.count()));
    const milliseconds end = elapsed + duration;
    while (!planned.empty() && planned.begin()->first <= end) {
        const auto node = planned.extract(planned.begin());
        elapsed = std::max(elapsed, node.key());
        locker.unlock();
        node.mapped()();
        locker.relock();
    }
    elapsed = std::max(elapsed, end);
}

} // namespace tarnTest
