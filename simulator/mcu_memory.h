#pragma once

#include "simulator/boot_loader_state.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tarnSimulator {

inline constexpr std::uint32_t mcuFlashStart = 0x08000000; // also mapped at 0
inline constexpr std::uint32_t mcuRamStart = 0x20000000;
// The boot loader uses the RAM below.
inline constexpr std::uint32_t mcuFreeRamStart = mcuRamStart + 0x200;
inline constexpr std::uint32_t mcuOptionBytesStart = 0x1FFFF800;
inline constexpr std::size_t mcuOptionBytesSize = 16;
inline constexpr std::size_t mcuPageSize = 0x400; // what is erased at once
inline constexpr std::size_t mcuPages = mcuFlashSize / mcuPageSize;
inline constexpr std::size_t mcuSectorSize = 0x1000; // what is write-protected at once
inline constexpr std::size_t mcuSectors = mcuFlashSize / mcuSectorSize;

// The MCU's memories at their addresses. The boot loader checks the protection against reading out; this
// class does not.
class McuMemory
{
public:
    explicit McuMemory(BootLoaderState &state)
        : mcu(state)
    { }

    // Power-on contents: a firmware in the flash, no protection.
    void restore(std::span<const std::uint8_t> firmware);

    // Where a byte lies in the flash; empty when it lies elsewhere.
    [[nodiscard]] static std::optional<std::size_t> flashOffset(std::uint32_t address);
    [[nodiscard]] static bool isFreeRam(std::uint32_t address);
    [[nodiscard]] static bool isReadable(std::uint32_t address);

    // Empty when not all of it is memory that may be read.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> read(
        std::uint32_t address, std::size_t count) const;
    // Programming only clears bits, as in any flash: it has to be erased before. False when not all of it is
    // memory that may be written.
    [[nodiscard]] bool write(std::uint32_t address, std::span<const std::uint8_t> bytes);
    // False when there is no such page, or when it is protected.
    [[nodiscard]] bool erasePage(std::size_t page);
    // False when a part of the flash is protected.
    [[nodiscard]] bool eraseAll();

    [[nodiscard]] std::vector<std::uint8_t> flash() const;

private:
    void eraseBytes(std::size_t offset, std::size_t count);
    [[nodiscard]] bool isProtected(std::size_t flashOffset) const;
    [[nodiscard]] std::vector<std::uint8_t> optionBytes() const;

    BootLoaderState &mcu;
};

} // namespace tarnSimulator
