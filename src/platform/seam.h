#pragma once

#include <atomic>

namespace tarnPlatform {

// Gives access to an interface's one implementation: the system's own, or the stand-in of a test. The
// interface derives from its own Seam and has a static ofSystem().
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
