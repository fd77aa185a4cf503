#include "device/ec_access_lock.h"

namespace tarnDeviceInfos {

EcAccessLock &ecAccessMutex = *new EcAccessLock;

bool EcAccessLock::lock()
{
    const QMutexLocker locker(&state);
    while (locked && !released)
        freed.wait(&state);
    if (released)
        return false;
    locked = true;
    return true;
}

void EcAccessLock::unlock()
{
    const QMutexLocker locker(&state);
    locked = false;
    freed.wakeOne();
}

void EcAccessLock::releaseWaiters()
{
    const QMutexLocker locker(&state);
    released = true;
    freed.wakeAll();
}

bool EcAccessLock::isLocked() const
{
    const QMutexLocker locker(&state);
    return locked;
}

} // namespace tarnDeviceInfos
