#pragma once

#include <QMutex>
#include <QWaitCondition>

#include <deque>

namespace tarnDeviceInfos {

// Serialises every multi-byte EC exchange of the process. A binary semaphore rather than a mutex, because an
// update mode takes it on one handler thread and releases it on another. Not recursive.
// Serves in the order of asking. So nobody waits longer than for those who came before, however often one
// of them comes again, and the same sequence of requests gives the same sequence at the EC, which the
// repetition of a recording depends on.
class EcAccessLock
{
public:
    // Waits for the lock; false when the waiters were released because the process ends.
    [[nodiscard]] bool lock();
    void unlock();
    // From now on lock() fails at once, also for threads that already wait.
    void releaseWaiters();
    [[nodiscard]] bool isLocked() const;
    // How many threads wait for it now.
    [[nodiscard]] std::size_t waiterCount() const;

private:
    // On the stack of the thread that waits.
    struct Waiter
    {
        QWaitCondition turn;
        bool isServed = false;
    };

    mutable QMutex state;
    std::deque<Waiter *> waiters; // the next one first
    bool locked = false;
    bool released = false;
};

// The one lock of the process. It is never destroyed, because threads may wait for it until the very end.
extern EcAccessLock &ecAccessMutex;

// Holds the lock for a scope. Test the object, because lock() may have failed: without the lock there must be
// no EC traffic.
class EcAccess
{
public:
    EcAccess()
        : owned(ecAccessMutex.lock())
    { }
    ~EcAccess()
    {
        if (owned)
            ecAccessMutex.unlock();
    }
    EcAccess(const EcAccess &) = delete;
    EcAccess &operator=(const EcAccess &) = delete;

    [[nodiscard]] explicit operator bool() const { return owned; }

private:
    const bool owned;
};

} // namespace tarnDeviceInfos
