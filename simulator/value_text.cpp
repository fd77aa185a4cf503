#include "simulator/value_text.h"

#include <charconv>

namespace tarnSimulator {

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

std::string bareHex(std::uint32_t value, int digits)
{
    std::string text;
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        text += hexDigits[value >> shift & 0xF];
    return text;
}

std::optional<std::int64_t> parseDigits(std::string_view text, int base)
{
    std::uint32_t number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

// Of the control character with which a text begins; 0: it begins with none. Those from U+0080 to U+009F have
// two bytes.
std::size_t controlSize(std::string_view text)
{
    const auto first = static_cast<std::uint8_t>(text.front());
    if (first < ' ' || first == 0x7F)
        return 1;
    const bool isLate = first == 0xC2 && text.size() > 1 && static_cast<std::uint8_t>(text[1]) < 0xA0;
    return isLate ? 2 : 0;
}

} // namespace

std::optional<std::int64_t> parseNumber(std::string_view text)
{
    const bool negative = text.starts_with('-');
    if (negative)
        text.remove_prefix(1);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal)
        text.remove_prefix(2);
    const auto number = parseDigits(text, hexadecimal ? 16 : 10);
    if (!number)
        return std::nullopt;
    return negative ? -*number : *number;
}

std::optional<std::uint8_t> parseByte(std::string_view text)
{
    const auto number = parseNumber(text);
    if (!number || *number < 0 || *number > 255)
        return std::nullopt;
    return static_cast<std::uint8_t>(*number);
}

std::optional<Colour> parseColour(std::string_view text)
{
    const std::size_t first = text.find(',');
    const std::size_t second = first == std::string_view::npos ? first : text.find(',', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const auto red = parseByte(text.substr(0, first));
    const auto green = parseByte(text.substr(first + 1, second - first - 1));
    const auto blue = parseByte(text.substr(second + 1));
    if (!red || !green || !blue)
        return std::nullopt;
    return Colour {*red, *green, *blue};
}

std::string colourText(Colour colour)
{
    return std::to_string(colour.red) + "," + std::to_string(colour.green) + ","
        + std::to_string(colour.blue);
}

std::optional<SerialNumber> parseSerialNumber(std::string_view text)
{
    SerialNumber bytes {};
    if (text.size() != bytes.size() * 2)
        return std::nullopt;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = parseDigits(text.substr(i * 2, 2), 16);
        if (!byte)
            return std::nullopt;
        bytes[bytes.size() - 1 - i] = static_cast<std::uint8_t>(*byte);
    }
    return bytes;
}

std::string serialNumberText(const SerialNumber &bytes)
{
    std::string text;
    for (std::size_t i = bytes.size(); i > 0; --i)
        text += bareHex(bytes[i - 1], 2);
    return text;
}

std::string printable(std::string_view text)
{
    std::string shown;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const std::size_t size = controlSize(text.substr(place));
        if (size == 0)
            shown += text[place];
        for (std::size_t index = 0; index < size; ++index)
            shown += "\\x" + bareHex(static_cast<std::uint8_t>(text[place + index]), 2);
        place += size > 0 ? size - 1 : 0;
    }
    return shown;
}

std::string hexText(std::uint32_t value, int digits)
{
    return "0x" + bareHex(value, digits);
}

} // namespace tarnSimulator
