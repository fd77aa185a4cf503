#pragma once

#include "simulator/computer_control.h"
#include "simulator/machine_state.h"
#include "simulator/recording/mailbox_memories.h"
#include "simulator/register_file.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>

namespace tarnSimulator {

// The machine with which a recording is compared: the registers of the simulated computer, whose mailboxes
// answer at once, and what is known of them. At first nothing is known: the first value that a recording
// shows is adopted, and what the host writes is known from then on.
class ModelMachine
{
public:
    ModelMachine();

    // The clock of the registers.
    void setNowMs(std::uint64_t ms) { nowMs = ms; }

    void write(std::uint16_t address, std::uint8_t value);
    [[nodiscard]] std::uint8_t read(std::uint16_t address) { return registers.read(address); }
    [[nodiscard]] bool isKnown(std::uint16_t address) const { return known.contains(address); }
    void adopt(std::uint16_t address, std::uint8_t value);
    void forget(std::uint16_t address);
    // The EEPROM operation that began last had no effect, or not that of the model.
    void forgetEepromOperation();

    // What the host has seen of the accessory, and when: the time between the request and the answer. Nothing
    // as long as that does not tell which one is attached; then, whether there may have been another one
    // since the last time.
    struct Moment
    {
        std::uint64_t beginUs;
        std::uint64_t endUs;
    };
    [[nodiscard]] std::optional<bool> seeLinkStatus(std::uint8_t status, Moment seen);
    [[nodiscard]] std::optional<bool> seeAccessoryCode(std::uint8_t code, Moment seen);
    // True as soon as the MCU may have been flashed or restarted, so that its version may change at any time.
    [[nodiscard]] bool isVersionFree() const { return versionFree; }
    // True while the host's limit is in force that this register reads back.
    [[nodiscard]] bool isLimitOfHost(std::uint16_t checkAddress) const;

    [[nodiscard]] std::uint32_t eepromBusyMs() const { return usualEepromBusyMs; }
    [[nodiscard]] std::uint32_t mailboxBusyMs() const { return usualMailboxBusyMs; }

private:
    using Memory = MailboxMemories::Memory;
    using Cell = MailboxMemories::Cell;
    struct WriteEffect;
    struct MailboxTransfer;
    static const WriteEffect writeEffects[];
    static const MailboxTransfer transfers[];

    void noteMailboxCommand(std::uint8_t command);
    void noteEepromCommand(std::uint8_t command);
    void noteLimits(std::uint8_t);
    void noteMcuControl(std::uint8_t);
    void loadAnswer(std::optional<Memory> memory, std::size_t size);
    void keepWritten(std::optional<Memory> memory, std::size_t size);
    [[nodiscard]] std::optional<Memory> light() const;
    [[nodiscard]] std::optional<Memory> kvaneLed() const;
    [[nodiscard]] std::optional<Memory> serialNumber() const;

    [[nodiscard]] bool setAccessory(std::uint8_t code, std::uint64_t seenUs);
    void plug(std::uint8_t code);
    void makeKnown(std::uint16_t address, bool isKnown);

    std::unique_ptr<MachineState> state; // too large for the stack
    std::uint64_t nowMs = 0;
    const NowMs clock = [this] {
        return nowMs;
    };
    FaultPanel faults;
    RegisterFile registers;
    ComputerControl control;
    MailboxMemories memories;
    const std::uint32_t usualEepromBusyMs;
    const std::uint32_t usualMailboxBusyMs;

    std::set<std::uint16_t> known; // registers
    std::map<std::uint16_t, Cell> origins; // of answers in the mailboxes
    std::optional<Cell> eepromCell; // of the last operation
    std::optional<std::uint8_t> linkStatus;
    std::uint64_t linkSeenUs = 0;
    std::uint64_t accessorySeenUs = 0;
    std::optional<std::uint8_t> accessory; // ACCESSORY_NONE: none is linked
    bool hasCommanded = false; // the mailbox, since the host last saw which accessory is attached
    bool versionFree = false;
};

} // namespace tarnSimulator
