#pragma once

#include <cstdint>
#include <functional>

namespace tarnSimulator {

// Milliseconds of a clock that never goes back. Its zero point is of no importance.
using NowMs = std::function<std::uint64_t()>;

[[nodiscard]] std::uint64_t steadyNowMs();

// True when durationMs have passed since sinceMs. A sinceMs in the future comes from before a restart of the
// real computer, which restarts the clock. It counts as passed, because the unsigned difference is then very
// large.
[[nodiscard]] constexpr bool hasElapsed(std::uint64_t nowMs, std::uint64_t sinceMs, std::uint64_t durationMs)
{
    return nowMs - sinceMs >= durationMs;
}

} // namespace tarnSimulator
