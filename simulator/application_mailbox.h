#pragma once

#include "simulator/clock.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// Executes the application commands: lights, KVane serial number and GPU state. A command takes effect when
// its byte is written; the byte goes back to 0 after timing.mailboxBusyMs. The next command is accepted
// before that.
class ApplicationMailbox
{
public:
    ApplicationMailbox(MachineState &machine, const NowMs &clock, const FaultPanel &panel)
        : state(machine)
        , nowMs(clock)
        , faults(panel)
    { }

    void execute(std::uint8_t command);
    // Clears the command byte when its time has come. To be called before the host looks.
    void advance();

private:
    struct Command;
    static const Command COMMANDS[];

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
