#pragma once

#include <atomic>

namespace tarnPlatform {

// Gives an interface its one implementation of this system, or the stand-in of a test. The interface derives
// from its own seam and has a static ofSystem().
template <typename Interface> class Seam
{
public:
    static Interface &system()
    {
        Interface *standIn = installed.load(std::memory_order_acquire);
        return standIn ? *standIn : Interface::ofSystem();
    }

    // Null: the system's own again.
    static void replace(Interface *standIn) { installed.store(standIn, std::memory_order_release); }

private:
    static inline std::atomic<Interface *> installed {nullptr};
};

} // namespace tarnPlatform
