#pragma once

#include "simulator/accessory_mcu.h"
#include "simulator/application_mailbox.h"
#include "simulator/eeprom_mailbox.h"
#include "simulator/event_queue.h"
#include "simulator/machine_state.h"
#include "simulator/power_limits.h"
#include "simulator/registers.h"

namespace tarnSimulator {

// The EC's xdata as the host sees it: 64 KiB of plain bytes, except where a read or a write has an effect.
class RegisterFile : public Registers
{
public:
    RegisterFile(MachineState &machine, const NowMs &clock, const FaultPanel &panel);

    [[nodiscard]] std::uint8_t read(std::uint16_t address) override;
    void write(std::uint16_t address, std::uint8_t value) override;

    // Lets the mailboxes finish what is due.
    void advance();

private:
    struct ReadEffect;
    struct WriteEffect;
    static const ReadEffect readEffects[];
    static const WriteEffect writeEffects[];

    void presentEvent(std::uint16_t address);
    void startEeprom(std::uint16_t address);
    void executeCommand(std::uint16_t address);
    void applyLimits(std::uint16_t address);
    void controlMcu(std::uint16_t address);

    MachineState &state;
    EepromMailbox eepromMailbox;
    ApplicationMailbox applicationMailbox;
    PowerLimits powerLimits;
    EventQueue events;
    AccessoryMcu mcu;
};

} // namespace tarnSimulator
