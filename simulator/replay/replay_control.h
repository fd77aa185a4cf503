#pragma once

#include "device/recording/request_record.h"
#include "simulator/machine_state.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnSimulator {

enum class ReplayMode : std::uint8_t {
    Off, // the model answers
    Strict, // the next access must be the recorded one
    Loose, // each register gives its recorded values, whatever comes between them
};

// A replay of the simulated computer, as it is looked at from outside the service.
struct Replay
{
    ReplayMode mode = ReplayMode::Off;
    std::string file {}; // the recording
    std::uint64_t consumed = 0; // accesses of ports, in a loose replay of registers
    std::uint64_t total = 0;
    std::uint32_t steps = 0; // requests and the like that have been done again
    std::uint32_t stepsTotal = 0;
    std::uint64_t after = 0; // accesses of the service after the end or the difference
    bool isReloadLeft = false; // the recording ends with one that has not come
    std::string difference {}; // the first one; empty: none

    // All that was recorded has been asked for and done, and nothing else before it.
    [[nodiscard]] bool isComplete() const
    {
        return difference.empty() && consumed > 0 && consumed == total && steps == stepsTotal
            && !isReloadLeft;
    }
};

[[nodiscard]] Replay replayOf(const MachineState &state);

// What a replay that is not complete waits for: the next access of the recording, and the next step. Empty
// when that is not known.
[[nodiscard]] std::string leftOfReplay(const MachineState &state, const std::filesystem::path &stateFile);

// What is replayed, and what is done meanwhile from outside: at which access, and in the form of
// replay_steps.h.
struct PreparedReplay
{
    ReplayMode mode = ReplayMode::Strict;
    std::string recordingFile {}; // absolute
    std::vector<tarnRecording::RequestRecord> steps {};
};

// From the next load of the port library on the computer answers from the recording; the machine is put into
// its power-on condition, without devices where there are some among the steps. An empty text when it can be
// done, else why not.
[[nodiscard]] std::string prepareReplay(
    MachineState &state, const std::filesystem::path &stateFile, const PreparedReplay &prepared);

// From the next load of the port library on the model answers again.
void endReplay(MachineState &state);

} // namespace tarnSimulator
