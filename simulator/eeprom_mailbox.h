#pragma once

#include "simulator/clock.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// Moves single bytes between the EC's EEPROM and its xdata mailbox. An operation starts with the write of
// EEP_CMD, shows busy for timing.eepromBusyMs and takes effect at its end.
class EepromMailbox
{
public:
    EepromMailbox(MachineState &machine, const NowMs &clock, const FaultPanel &panel)
        : state(machine)
        , nowMs(clock)
        , faults(panel)
    { }

    // Takes offset and data from the mailbox now; later writes do not change the operation.
    void start(std::uint8_t command);
    // Ends an operation that is due. To be called before each access of the host.
    void advance();

private:
    [[nodiscard]] std::uint8_t errorOf(std::uint8_t command) const;
    void finish(std::uint8_t status);

    MachineState &state;
    const NowMs &nowMs;
    const FaultPanel &faults;
};

} // namespace tarnSimulator
