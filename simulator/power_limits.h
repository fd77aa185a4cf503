#pragma once

#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// The processor power limits and the bytes in which the EC reports what it has made of them.
class PowerLimits
{
public:
    PowerLimits(MachineState &machine, const FaultPanel &panel)
        : state(machine)
        , faults(panel)
    { }

    // Takes the limit at this address over into its read-back byte. Addresses of other registers are ignored.
    void latch(std::uint16_t limitAddress);
    // What the host gets for a read-back byte that holds `value`, within 0 to 255 W.
    [[nodiscard]] std::uint8_t readBack(std::uint8_t value) const;

private:
    MachineState &state;
    const FaultPanel &faults;
};

} // namespace tarnSimulator
