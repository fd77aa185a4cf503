#pragma once

#include <QMutex>

#include <atomic>

namespace tarnPlatform {

// The one object of a class that lives from its first use to the end of the process. It is never destroyed,
// because threads may still use it while the process ends. Constructors must not ask for another process-wide
// object, or two creations could wait for each other.
template <typename Object> class ProcessWide
{
public:
    static Object *instance()
    {
        Object *existing = object.load(std::memory_order_acquire);
        if (existing)
            return existing;
        const QMutexLocker locker(&creation);
        existing = object.load(std::memory_order_relaxed);
        if (!existing) {
            existing = new Object;
            object.store(existing, std::memory_order_release);
        }
        return existing;
    }

    // The object if it has been created, else null.
    static Object *existing() { return object.load(std::memory_order_acquire); }

    // Puts a stand-in in the object's place; to be called before the object is created.
    static void adopt(Object *standIn) { object.store(standIn, std::memory_order_release); }

private:
    static inline std::atomic<Object *> object {nullptr};
    static inline QMutex creation;
};

} // namespace tarnPlatform
