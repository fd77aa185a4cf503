#pragma once

#include "simulator/computer_control.h"

#include <span>
#include <string>
#include <string_view>

namespace tarnSimulator {

// A value of the machine that can be read, and mostly changed, by its name.
struct MachineValue
{
    std::string_view name;
    std::string_view allowed; // what may be set
    std::string_view help;
    std::string (*read)(const ComputerControl &computer);
    // False when the text is not allowed. Null when the value cannot be set.
    bool (*write)(ComputerControl &computer, std::string_view text);
};

[[nodiscard]] std::span<const MachineValue> machineValues();
// Null when there is no value of that name.
[[nodiscard]] const MachineValue *findMachineValue(std::string_view name);

} // namespace tarnSimulator
