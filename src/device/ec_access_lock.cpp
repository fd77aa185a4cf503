#include "device/ec_access_lock.h"

namespace tarnDeviceInfos {

EcAccessLock &ecAccessMutex = *new EcAccessLock;

bool EcAccessLock::lock()
{
    const QMutexLocker locker(&state);
    if (released)
        return false;
    if (!locked) {
        locked = true;
        return true;
    }
    Waiter self;
    waiters.push_back(&self);
    while (!self.isServed && !released)
        self.turn.wait(&state);
    if (!released)
        return true;
    // One that was served and released at the same time gives back what nobody takes any more.
    if (self.isServed)
        locked = false;
    else
        std::erase(waiters, &self);
    return false;
}

// Hands the lock on without opening it: a thread that asks in between would overtake those that wait.
void EcAccessLock::unlock()
{
    const QMutexLocker locker(&state);
    if (waiters.empty()) {
        locked = false;
        return;
    }
    Waiter *next = waiters.front();
    waiters.pop_front();
    next->isServed = true;
    next->turn.wakeOne();
}

void EcAccessLock::releaseWaiters()
{
    const QMutexLocker locker(&state);
    released = true;
    for (Waiter *waiter : waiters)
        waiter->turn.wakeOne();
}

bool EcAccessLock::isLocked() const
{
    const QMutexLocker locker(&state);
    return locked;
}

std::size_t EcAccessLock::waiterCount() const
{
    const QMutexLocker locker(&state);
    return waiters.size();
}

} // namespace tarnDeviceInfos
