#pragma once

#include <chrono>
#include <functional>

namespace tarnctl {

// Runs the event loop until the condition holds; false when it does not within the time.
[[nodiscard]] bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds longest);
// The same without a limit.
void waitUntilHolds(const std::function<bool()> &condition);

} // namespace tarnctl
