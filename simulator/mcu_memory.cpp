#include "simulator/mcu_memory.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

constexpr std::uint8_t erased = 0xFF;
constexpr std::uint8_t readoutAllowed = 0xA5; // anything else: protected

template <std::size_t size>
void fill(std::array<SharedByte, size> &bytes, std::size_t offset, std::size_t count, std::uint8_t value)
{
    for (std::size_t i = offset; i < offset + count; ++i)
        bytes[i].store(value, std::memory_order_relaxed);
}

constexpr bool lies(std::uint32_t address, std::size_t count, std::uint32_t start, std::size_t size)
{
    return address >= start && std::uint64_t {address} + count <= std::uint64_t {start} + size;
}

// Offset of the range in the flash; empty when not all of it is there.
std::optional<std::size_t> flashRange(std::uint32_t address, std::size_t count)
{
    if (lies(address, count, mcuFlashStart, mcuFlashSize))
        return address - mcuFlashStart;
    if (lies(address, count, 0, mcuFlashSize))
        return address;
    return std::nullopt;
}

bool isFreeRamRange(std::uint32_t address, std::size_t count)
{
    return lies(address, count, mcuFreeRamStart, mcuRamStart + mcuRamSize - mcuFreeRamStart);
}

} // namespace

void McuMemory::restore(std::span<const std::uint8_t> firmware)
{
    mcu.writeProtected.store(0);
    mcu.readoutProtected.store(0);
    fill(mcu.ram, 0, mcuRamSize, 0);
    eraseBytes(0, mcuFlashSize);
    for (std::size_t i = 0; i < firmware.size(); ++i)
        mcu.flash[i].store(firmware[i], std::memory_order_relaxed);
}

std::optional<std::size_t> McuMemory::flashOffset(std::uint32_t address)
{
    return flashRange(address, 1);
}

bool McuMemory::isFreeRam(std::uint32_t address)
{
    return isFreeRamRange(address, 1);
}

bool McuMemory::isReadable(std::uint32_t address)
{
    return flashOffset(address).has_value() || isFreeRam(address)
        || lies(address, 1, mcuOptionBytesStart, mcuOptionBytesSize);
}

std::optional<std::vector<std::uint8_t>> McuMemory::read(std::uint32_t address, std::size_t count) const
{
    const auto copy = [count](const auto &bytes, std::size_t offset) {
        std::vector<std::uint8_t> copied(count);
        for (std::size_t i = 0; i < count; ++i)
            copied[i] = bytes[offset + i];
        return copied;
    };
    if (const auto offset = flashRange(address, count))
        return copy(mcu.flash, *offset);
    if (isFreeRamRange(address, count))
        return copy(mcu.ram, address - mcuRamStart);
    if (lies(address, count, mcuOptionBytesStart, mcuOptionBytesSize))
        return copy(optionBytes(), address - mcuOptionBytesStart);
    return std::nullopt;
}

bool McuMemory::write(std::uint32_t address, std::span<const std::uint8_t> bytes)
{
    if (isFreeRamRange(address, bytes.size())) {
        for (std::size_t i = 0; i < bytes.size(); ++i)
            mcu.ram[address - mcuRamStart + i].store(bytes[i]);
        return true;
    }
    const auto offset = flashRange(address, bytes.size());
    if (!offset || isProtected(*offset) || isProtected(*offset + bytes.size() - 1))
        return false;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        mcu.flash[*offset + i].fetch_and(bytes[i]);
    return true;
}

bool McuMemory::erasePage(std::size_t page)
{
    if (page >= mcuPages || isProtected(page * mcuPageSize))
        return false;
    eraseBytes(page * mcuPageSize, mcuPageSize);
    return true;
}

bool McuMemory::eraseAll()
{
    if (mcu.writeProtected.load() != 0)
        return false;
    eraseBytes(0, mcuFlashSize);
    return true;
}

std::vector<std::uint8_t> McuMemory::flash() const
{
    return {mcu.flash.begin(), mcu.flash.end()};
}

void McuMemory::eraseBytes(std::size_t offset, std::size_t count)
{
    fill(mcu.flash, offset, count, erased);
}

bool McuMemory::isProtected(std::size_t flashOffset) const
{
    return (mcu.writeProtected.load() >> (flashOffset / mcuSectorSize) & 1U) != 0;
}

// Each byte is followed by its complement: read-out protection, user byte, two data bytes, and a bit for each
// sector that is set while the sector may be written.
std::vector<std::uint8_t> McuMemory::optionBytes() const
{
    std::vector<std::uint8_t> bytes;
    const auto add = [&bytes](std::uint32_t value) {
        bytes.push_back(static_cast<std::uint8_t>(value));
        bytes.push_back(static_cast<std::uint8_t>(~value));
    };
    add(mcu.readoutProtected.load() == 0 ? readoutAllowed : 0);
    for (int i = 0; i < 3; ++i)
        add(erased);
    for (unsigned shift = 0; shift < mcuSectors; shift += 8)
        add(~mcu.writeProtected.load() >> shift);
    return bytes;
}

} // namespace tarnSimulator
