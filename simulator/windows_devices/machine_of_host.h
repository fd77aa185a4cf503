#pragma once

#include <filesystem>

namespace tarnSimulator {

struct MachineState;

// The simulated computer of the program that has loaded this library: the one that its port library maps.
// Null when there is none.
[[nodiscard]] MachineState *machineOfHost();

// Where the program that has loaded this library lies.
[[nodiscard]] std::filesystem::path folderOfHost();

} // namespace tarnSimulator
