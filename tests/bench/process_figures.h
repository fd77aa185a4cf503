#pragma once

#include <QtGlobal>

#include <chrono>
#include <optional>

namespace tarnBench {

// What a process does in a stretch of time.
struct IdleFigures
{
    double wakeUpsPerSecond = 0; // voluntary context switches: each is one sleep that ended
    double cpuPercent = 0; // of one core
    int threads = 0;
};
// Watches the process for so long, serving this thread's events meanwhile. What a thread did that ends
// meanwhile is not seen.
[[nodiscard]] IdleFigures watchProcess(qint64 pid, std::chrono::milliseconds duration);

// In KiB, from smaps_rollup.
struct Memory
{
    int resident = 0; // everything mapped and present, shared pages in full
    int proportional = 0; // shared pages divided by the number of processes that have them now
    int own = 0; // pages that no other process has
    int anonymous = 0; // heap, stacks and changed data
};
[[nodiscard]] std::optional<Memory> memoryOf(qint64 pid);

} // namespace tarnBench
