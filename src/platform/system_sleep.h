#pragma once

#include <chrono>

namespace tarnPlatform {

// Blocks the calling thread for the duration, to within a millisecond: the EC's 5 ms waits must not become
// a 15.6 ms scheduler tick.
void systemSleep(std::chrono::milliseconds duration);

} // namespace tarnPlatform
