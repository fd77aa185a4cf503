#pragma once

#include <cstdint>
#include <functional>

namespace tarnSimulator {

// Milliseconds of a clock that never goes back. Its zero point is of no importance.
using NowMs = std::function<std::uint64_t()>;

[[nodiscard]] std::uint64_t steadyNowMs();

// True when durationMs have passed since sinceMs. An instant that lies in the future was taken by another
// clock, before the real machine was restarted: it counts as passed, which the unsigned difference gives by
// itself.
[[nodiscard]] constexpr bool hasElapsed(std::uint64_t nowMs, std::uint64_t sinceMs, std::uint64_t durationMs)
{
    return nowMs - sinceMs >= durationMs;
}

} // namespace tarnSimulator
