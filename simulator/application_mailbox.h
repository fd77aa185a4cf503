#pragma once

#include "simulator/clock.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// Executes the application commands: lights, KVane serial number and GPU state. What the host hands over is
// taken when the command byte is written; what it asks for is in the data bytes when the command byte goes
// back to 0, after timing.mailboxBusyMs, and not before. The next command is accepted in the meantime, and
// the one before it then leaves no answer.
class ApplicationMailbox
{
public:
    ApplicationMailbox(MachineState &machine, const NowMs &clock, const FaultPanel &panel)
        : state(machine)
        , nowMs(clock)
        , faults(panel)
    { }

    void execute(std::uint8_t command);
    // Loads the answer and clears the command byte when its time has come. To be called before the host
    // looks.
    void advance();

private:
    struct Command;
    static const Command COMMANDS[];
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
