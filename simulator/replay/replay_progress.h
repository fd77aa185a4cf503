#pragma once

#include "simulator/machine_state.h"
#include "simulator/replay/replay_steps.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace tarnSimulator {

inline constexpr std::uint16_t emptyBus = 0xFF; // what a port without a device reads as

// What both kinds of replay keep of their course, where `tarnsim` and a reloaded port library see it.
class ReplayProgress
{
public:
    ReplayProgress(MachineState &machine, const std::filesystem::path &stateFile)
        : state(machine)
        , steps(machine, stateFile)
    { }

    [[nodiscard]] const std::string &error() const { return steps.error(); }
    // Nothing is answered any more: all has been consumed, or something was different.
    [[nodiscard]] bool hasEnded() const;
    void noteAfterEnd() { state.replay.after.fetch_add(1); }
    // Only the first one is kept.
    void noteDifference(const std::string &text);
    // Does what is due from outside when so many accesses of ports have been made in the recording.
    void doSteps(std::uint64_t accesses);

private:
    MachineState &state;
    ReplaySteps steps;
};

} // namespace tarnSimulator
