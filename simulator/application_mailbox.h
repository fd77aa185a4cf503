#pragma once

#include "simulator/clock.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// Executes the application commands: lights, KVane serial number and GPU state. The host's data is taken when
// the command byte is written. The answer is in the data bytes when the command byte goes back to 0, after
// timing.mailboxBusyMs, and not before. A command written in the meantime is accepted, and the one before it
// then leaves no answer.
class ApplicationMailbox
{
public:
    ApplicationMailbox(MachineState &machine, const NowMs &clock, const FaultPanel &panel)
        : state(machine)
        , nowMs(clock)
        , faults(panel)
    { }

    void execute(std::uint8_t command);
    // Loads the answer and clears the command byte when that is due. To be called before each access of the
    // host.
    void advance();

private:
    struct Command;
    static const Command commands[];
    [[nodiscard]] static const Command *find(std::uint8_t code);

    void storeGpuState();
    void loadColour();
    void applyColour();
    void loadSerialNumber();
    void loadKvaneLed();
    void applyKvaneLed();

    // Null when the attached accessory has no light.
    [[nodiscard]] SharedWord *lightOfAccessory();

    MachineState &state;
    const NowMs &nowMs;
    const FaultPanel &faults;
};

} // namespace tarnSimulator
