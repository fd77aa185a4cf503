#pragma once

#include "simulator/value_group.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnSimulator {

enum class HostWrites : std::uint8_t {
    Kept,
    Ignored, // what the EC measures or reports: writes are taken and have no effect
};

// What `tarnsim set` takes for the value of a register.
enum class ValueSetting : std::uint8_t {
    Nothing, // the value can only be read
    Byte,
    Switch, // "on" and "off" beside plain numbers, for registers in which one bit is the switch
};

// A register as one of the values of `tarnsim`.
struct RegisterValue
{
    std::string_view name; // empty: the register is none of them
    ValueGroup group = ValueGroup::Other;
    ValueSetting setting = ValueSetting::Nothing;
    std::string_view help {};
    std::uint8_t onValue = 0; // of a Switch
};

struct Register
{
    std::string_view name;
    std::uint16_t address = 0;
    HostWrites hostWrites = HostWrites::Kept;
    std::uint8_t atPowerOn = 0; // PowerLimits sets its own registers
    RegisterValue value {};
};

// Every register of the map, in the order in which `tarnsim` lists the values of a group. Registers with
// several names are listed under each; only the first row of an address tells more than the name.
[[nodiscard]] std::span<const Register> registerTable();

// The first row of the address; null when the register has no name.
[[nodiscard]] const Register *findRegister(std::uint16_t address);

// "EC_POWERMODE_PL1", or for the later serial number bytes "KVANE_SN_BYTES+3"; empty when the register has no
// name.
[[nodiscard]] std::string registerName(std::uint16_t address);
// "0x04A8 EC_POWERMODE_PL1": the address and, if it has one, the name.
[[nodiscard]] std::string addressText(std::uint16_t address);
[[nodiscard]] std::optional<std::uint16_t> registerAddress(std::string_view name);

} // namespace tarnSimulator
