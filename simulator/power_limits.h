#pragma once

#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// The processor power limits and the bytes in which the EC reports what is in force. Only in manual mode are
// that the host's limits. In automatic mode it is what the EC finds right, and the host's wait in their
// registers until it takes control.
class PowerLimits
{
public:
    explicit PowerLimits(const FaultPanel &panel)
        : faults(panel)
    { }

    // Out of the factory: automatic mode, and the registers hold what the EC finds right.
    static void restore(MachineState &machine);
    // To be called when the mode or a limit has been written.
    static void apply(MachineState &machine);
    // What the host gets for a read-back byte that holds `value`, within 0 to 255 W.
    [[nodiscard]] std::uint8_t readBack(std::uint8_t value) const;

private:
    const FaultPanel &faults;
};

} // namespace tarnSimulator
