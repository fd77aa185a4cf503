#pragma once

#include "simulator/machine_state.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <tuple>

namespace tarnSimulator {

// Memories that the host reaches through a mailbox only, and of which of their bytes a recording has shown
// what is in them.
class MailboxMemories
{
public:
    static constexpr std::size_t colourBytes = 3;

    enum class Memory : std::uint8_t { DockLight, GraphicsLight, KvaneLed, KvaneSerial, Eeprom };
    struct Cell
    {
        Memory memory;
        std::size_t index;

        [[nodiscard]] bool operator<(const Cell &other) const
        {
            return std::tie(memory, index) < std::tie(other.memory, other.index);
        }
    };

    explicit MailboxMemories(MachineState &machine)
        : state(machine)
    { }

    [[nodiscard]] bool isKnown(const Cell &cell) const { return known.contains(cell); }
    void makeKnown(const Cell &cell, bool isKnownNow);
    void forget(Memory memory);
    // All but the EEPROM are in accessories.
    void forgetAccessories();

    void store(const Cell &cell, std::uint8_t value);

private:
    MachineState &state;
    std::set<Cell> known;
};

} // namespace tarnSimulator
