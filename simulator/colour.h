#pragma once

#include <cstdint>

namespace tarnSimulator {

// Colour of a light, in the state file one word 0x00RRGGBB so that a reader never sees half a change.
struct Colour
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    [[nodiscard]] static constexpr Colour fromWord(std::uint32_t word)
    {
        return {static_cast<std::uint8_t>(word >> 16 & 0xFF), static_cast<std::uint8_t>(word >> 8 & 0xFF),
            static_cast<std::uint8_t>(word & 0xFF)};
    }

    [[nodiscard]] constexpr std::uint32_t toWord() const
    {
        return static_cast<std::uint32_t>(red) << 16 | static_cast<std::uint32_t>(green) << 8 | blue;
    }

    friend constexpr bool operator==(Colour, Colour) = default;
};

} // namespace tarnSimulator
