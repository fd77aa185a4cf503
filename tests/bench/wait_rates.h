#pragma once

#include <QString>

#include <vector>

namespace tarnBench {

// What the monitor's cycle consists of while nothing changes, with one accessory attached or none.
struct WaitRate
{
    QString accessory; // by its name in the simulator's catalogue; empty: none
    double cycleMs = 0; // all of it waits
    double waitsPerSecond = 0; // each of them is one wake-up that the sequences ask for
    double workUs = 0; // real time of a cycle in which waiting takes none, the simulated EC included
};

// Runs the monitor's own loop on virtual time, on this thread. Once in a process: the loop ends for good.
[[nodiscard]] std::vector<WaitRate> measureWaitRates();

} // namespace tarnBench
