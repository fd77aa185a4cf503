#pragma once

#include <span>

namespace tarnSimulator {

// A function of the system that the program which has loaded this library is to call here instead.
struct Detour
{
    const char *function;
    void *replacement;
};

[[nodiscard]] std::span<const Detour> sessionDetours();
[[nodiscard]] std::span<const Detour> serviceDetours();
[[nodiscard]] std::span<const Detour> consoleDetours();

} // namespace tarnSimulator
