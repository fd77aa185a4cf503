#pragma once

#include <cstdint>

namespace tarnSimulator {

// What the EC has behind its channel.
class Registers
{
public:
    virtual ~Registers() = default;

    [[nodiscard]] virtual std::uint8_t read(std::uint16_t address) = 0;
    virtual void write(std::uint16_t address, std::uint8_t value) = 0;
};

} // namespace tarnSimulator
