#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <numeric>
#include <span>

// Codes of the boot loader's protocol, and how its input is checked.
namespace tarnSimulator::bootProtocol {

// Named as in the description of the protocol.
// NOLINTBEGIN(readability-identifier-naming)
inline constexpr std::uint8_t INIT = 0x7F;
inline constexpr std::uint8_t ACK = 0x79;
inline constexpr std::uint8_t NACK = 0x1F;

inline constexpr std::uint8_t GET = 0x00;
inline constexpr std::uint8_t GET_VERSION = 0x01;
inline constexpr std::uint8_t GET_ID = 0x02;
inline constexpr std::uint8_t READ_MEMORY = 0x11;
inline constexpr std::uint8_t GO = 0x21;
inline constexpr std::uint8_t WRITE_MEMORY = 0x31;
inline constexpr std::uint8_t ERASE = 0x43;
inline constexpr std::uint8_t EXTENDED_ERASE = 0x44;
inline constexpr std::uint8_t WRITE_PROTECT = 0x63;
inline constexpr std::uint8_t WRITE_UNPROTECT = 0x73;
inline constexpr std::uint8_t READOUT_PROTECT = 0x82;
inline constexpr std::uint8_t READOUT_UNPROTECT = 0x92;

inline constexpr std::uint8_t ALL_PAGES = 0xFF;
inline constexpr std::uint16_t ALL_PAGES_EXTENDED = 0xFFFF;
inline constexpr std::uint16_t FIRST_SPECIAL_ERASE = 0xFFF0;
// NOLINTEND(readability-identifier-naming)

[[nodiscard]] inline std::uint8_t xorOf(std::span<const std::uint8_t> bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), std::uint8_t {0}, std::bit_xor<std::uint8_t>());
}

[[nodiscard]] inline bool isComplement(std::span<const std::uint8_t> pair)
{
    return xorOf(pair) == 0xFF;
}

[[nodiscard]] inline std::uint16_t halfAt(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    return static_cast<std::uint16_t>(bytes[offset] << 8 | bytes[offset + 1]);
}

} // namespace tarnSimulator::bootProtocol
