#pragma once

#include "simulator/machine_state.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace tarnSimulator {

// The ports of an EC that answers from a recording. Callers must serialise their accesses.
class ReplayedPorts
{
public:
    virtual ~ReplayedPorts() = default;

    // The port library has been loaded.
    virtual void noteLoad() = 0;
    virtual void write(std::uint16_t port, std::uint8_t value) = 0;
    // All 16 bits that were recorded.
    [[nodiscard]] virtual std::uint16_t read(std::uint16_t port) = 0;
};

// Null when the machine replays nothing. What stands in the way of a prepared replay is noted as its
// difference.
[[nodiscard]] std::unique_ptr<ReplayedPorts> replayedPorts(
    MachineState &state, const std::filesystem::path &stateFile);

} // namespace tarnSimulator
