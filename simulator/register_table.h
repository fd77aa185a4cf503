#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnSimulator {

struct RegisterName
{
    std::string_view name;
    std::uint16_t address;
};

// Every register of the map in address order. Registers with two names are listed under both.
[[nodiscard]] std::span<const RegisterName> registerNames();

// "EC_POWERMODE_PL1", or for the later serial number bytes "KVANE_SN_BYTES+3"; empty when the register has no
// name.
[[nodiscard]] std::string registerName(std::uint16_t address);
[[nodiscard]] std::optional<std::uint16_t> registerAddress(std::string_view name);

} // namespace tarnSimulator
