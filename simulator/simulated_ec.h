#pragma once

#include "simulator/channel_faults.h"
#include "simulator/clock.h"
#include "simulator/ec_channel.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"
#include "simulator/register_file.h"
#include "simulator/status_noise.h"

#include <cstdint>

namespace tarnSimulator {

// The Embedded Controller behind its two ports. Its whole state is in the machine state, so it may be
// destroyed and made again in the middle of an exchange. Callers must serialise their port accesses.
class SimulatedEc
{
public:
    using NowMs = tarnSimulator::NowMs;

    SimulatedEc(MachineState &state, NowMs nowMs);
    SimulatedEc(const SimulatedEc &) = delete;
    SimulatedEc &operator=(const SimulatedEc &) = delete;

    // Ports of other devices are ignored and read as 0xFF.
    void writePort(std::uint16_t port, std::uint8_t value);
    [[nodiscard]] std::uint8_t readPort(std::uint16_t port);

private:
    [[nodiscard]] std::uint8_t readStatus();

    NowMs nowMs;
    FaultPanel faults;
    RegisterFile registers;
    EcChannel channel;
    ChannelFaults channelFaults;
    StatusNoise otherBits;
};

} // namespace tarnSimulator
