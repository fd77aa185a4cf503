#pragma once

#include "simulator/colour.h"
#include "simulator/computer_control.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Values of the machine as people write them.
namespace tarnSimulator {

// Decimal, or hexadecimal after 0x; a minus sign in front is allowed. Empty for anything else.
[[nodiscard]] std::optional<std::int64_t> parseNumber(std::string_view text);
[[nodiscard]] std::optional<std::uint8_t> parseByte(std::string_view text);

// What may be written for a byte, and for one that is a switch.
inline constexpr std::string_view aByte = "0 to 255";
inline constexpr std::string_view aSwitch = "on, off or 0 to 255";

// "RED,GREEN,BLUE", each 0 to 255.
[[nodiscard]] std::optional<Colour> parseColour(std::string_view text);
[[nodiscard]] std::string colourText(Colour colour);

// 14 hexadecimal digits as printed on the accessory: the last mailbox byte first.
[[nodiscard]] std::optional<SerialNumber> parseSerialNumber(std::string_view text);
[[nodiscard]] std::string serialNumberText(const SerialNumber &bytes);

// "0x" and `digits` upper case hexadecimal digits.
[[nodiscard]] std::string hexText(std::uint32_t value, int digits);

// UTF-8 from anywhere, with "\x1B" in the place of each byte of a control character, which could change the
// terminal or feign lines.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace tarnSimulator
