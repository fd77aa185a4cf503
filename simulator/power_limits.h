#pragma once

#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// The processor power limits and the bytes in which the EC reports what is in force. In manual mode the
// host's limits are in force. In automatic mode the EC's own limits are, and the host's stay in their
// registers until manual mode.
class PowerLimits
{
public:
    explicit PowerLimits(const FaultPanel &panel)
        : faults(panel)
    { }

    // Factory condition: automatic mode, and the registers hold the EC's own limits.
    static void restore(MachineState &machine);
    // To be called when the mode or a limit has been written.
    static void apply(MachineState &machine);
    // What the host gets for a register that holds `value`: in a byte that reports a limit, a fault may
    // change it within 0 to 255 W.
    [[nodiscard]] std::uint8_t readBack(std::uint16_t address, std::uint8_t value) const;

private:
    const FaultPanel &faults;
};

} // namespace tarnSimulator
