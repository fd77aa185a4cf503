#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// Firmware of the simulated MCU. A real one is a program; this one only has a version, and a checksum that
// shows whether all of it has reached the flash. Layout:
//
//   0x000  vector table: stack pointer, reset vector, the other vectors
//   0x200  "TARNMCU", major, minor, patch, two zero bytes, size of the image (32 bits, low byte first)
//   0x210  pseudo-random bytes, always the same for the same version and size
//   end-4  FNV-1a checksum of everything before it (32 bits, low byte first)
namespace tarnSimulator {

inline constexpr std::size_t smallestFirmware = 0x400;
inline constexpr std::size_t usualFirmware = 0x4000;
// More than the flash holds, so that tests can try that too.
inline constexpr std::size_t largestFirmware = 0x100000;

struct FirmwareVersion
{
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    std::uint8_t patch = 0;

    friend bool operator==(const FirmwareVersion &, const FirmwareVersion &) = default;
};

// `size` is from smallestFirmware to largestFirmware and a multiple of 4.
[[nodiscard]] std::vector<std::uint8_t> makeFirmwareImage(
    FirmwareVersion version, std::size_t size = usualFirmware);

// Empty when the flash does not begin with a complete image.
[[nodiscard]] std::optional<FirmwareVersion> findFirmware(std::span<const std::uint8_t> flash);

} // namespace tarnSimulator
