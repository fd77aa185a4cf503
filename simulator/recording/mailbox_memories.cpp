#include "simulator/recording/mailbox_memories.h"

namespace tarnSimulator {

namespace {

void storeColourByte(SharedWord &light, std::size_t index, std::uint8_t value)
{
    const unsigned shift = 8U * static_cast<unsigned>(MailboxMemories::colourBytes - 1 - index);
    light.store((light.load() & ~(0xFFU << shift)) | static_cast<std::uint32_t>(value) << shift);
}

} // namespace

void MailboxMemories::makeKnown(const Cell &cell, bool isKnownNow)
{
    if (isKnownNow)
        known.insert(cell);
    else
        known.erase(cell);
}

void MailboxMemories::forget(Memory memory)
{
    std::erase_if(known, [memory](const Cell &cell) { return cell.memory == memory; });
}

void MailboxMemories::forgetAccessories()
{
    std::erase_if(known, [](const Cell &cell) { return cell.memory != Memory::Eeprom; });
}

void MailboxMemories::store(const Cell &cell, std::uint8_t value)
{
    switch (cell.memory) {
    case Memory::DockLight:
        storeColourByte(state.accessory.dockLight, cell.index, value);
        break;
    case Memory::GraphicsLight:
        storeColourByte(state.accessory.graphicsLight, cell.index, value);
        break;
    case Memory::KvaneLed:
        state.accessory.kvaneLed.store(value);
        break;
    case Memory::KvaneSerial:
        state.accessory.kvaneSerialNumber.at(cell.index).store(value);
        break;
    case Memory::Eeprom:
        state.eeprom.at(cell.index).store(value);
        break;
    }
}

} // namespace tarnSimulator
