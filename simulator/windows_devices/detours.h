#pragma once

#include <span>

namespace tarnSimulator {

// A function of the system, and the one that the program is made to call instead.
struct Detour
{
    const char *function;
    void *replacement;
};

[[nodiscard]] std::span<const Detour> sessionDetours();
[[nodiscard]] std::span<const Detour> serviceDetours();
[[nodiscard]] std::span<const Detour> consoleDetours();

} // namespace tarnSimulator
