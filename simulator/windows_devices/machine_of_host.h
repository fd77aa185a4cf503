#pragma once

namespace tarnSimulator {

struct MachineState;

// The simulated computer of the program that has loaded this library: the one that its port library maps.
// Null when there is none.
[[nodiscard]] MachineState *machineOfHost();

} // namespace tarnSimulator
