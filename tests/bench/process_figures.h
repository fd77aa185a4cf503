#pragma once

#include <QtGlobal>

#include <chrono>
#include <optional>

namespace tarnBench {

// What the kernel has counted for all threads of a process since its start. A thread that ended takes its
// counts along, so between two looks the threads have to stay the same.
struct Activity
{
    qint64 wakeUps = 0; // voluntary context switches: each is one sleep that ended
    qint64 preemptions = 0; // involuntary ones, which tell of a busy machine
    double cpuSeconds = 0;
    int threads = 0;
};
[[nodiscard]] Activity activityOf(qint64 pid);

// Activity in a stretch of time.
struct IdleFigures
{
    double wakeUpsPerSecond = 0;
    double cpuPercent = 0; // of one core
    int threads = 0;
};
// Watches the process for so long, serving this thread's events meanwhile.
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
