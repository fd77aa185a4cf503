#pragma once

namespace tarnSimulator {
struct MachineState;
}

namespace tarnPlatform {

// The simulated computer that this process runs on: the one in the file that its port library maps. Null when
// there is none.
[[nodiscard]] tarnSimulator::MachineState *simulatedComputer();

// Puts the machine of a test in its place; null: that of the file again.
void setSimulatedComputer(tarnSimulator::MachineState *machine);

} // namespace tarnPlatform
