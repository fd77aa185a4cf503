#pragma once

#include <chrono>

namespace tarnPlatform {

// How long the end of the process may take, from the request to stop on.
namespace endBudget {

using std::chrono::milliseconds;

// A healthy cycle of the monitor and the pause before a message end well within it.
inline constexpr milliseconds threads {1500};
// For a step that must not be left half done (UnfinishedStep).
inline constexpr milliseconds unfinishedStep {2300};
// Under the service manager the process is ended then, whatever it does.
inline constexpr milliseconds watchdog {2500};
// What the service manager is told, and the documentation promises.
inline constexpr milliseconds promised {3000};

static_assert(threads < unfinishedStep);
static_assert(unfinishedStep < watchdog);
static_assert(watchdog < promised);

} // namespace endBudget

} // namespace tarnPlatform
