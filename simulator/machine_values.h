#pragma once

#include "simulator/computer_control.h"
#include "simulator/value_group.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace tarnSimulator {

// A value of the machine that can be read, and mostly changed, by its name.
struct MachineValue
{
    std::string_view name;
    ValueGroup group;
    std::string_view allowed; // what may be set
    std::string_view help;
    std::function<std::string(const ComputerControl &computer)> read;
    // False when the text is not allowed. Null when the value cannot be set.
    std::function<bool(ComputerControl &computer, std::string_view text)> write;
};

// Sorted by group; in a group, those that are registers come first.
[[nodiscard]] std::span<const MachineValue> machineValues();
// Null when there is no value of that name.
[[nodiscard]] const MachineValue *findMachineValue(std::string_view name);

} // namespace tarnSimulator
