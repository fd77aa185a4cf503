#pragma once

namespace tarnBench {

// What has been allocated in this process and not been given back, counted call by call: an allocator's own
// figures include what it keeps for the next time, which differs from run to run.
struct LiveMemory
{
    long blocks = 0;
    long bytes = 0;
};

[[nodiscard]] LiveMemory liveMemory();

} // namespace tarnBench
