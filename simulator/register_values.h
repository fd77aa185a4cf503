#pragma once

#include "simulator/machine_values.h"

#include <vector>

namespace tarnSimulator {

// Those values of the machine that are registers, in the order of the register table.
[[nodiscard]] std::vector<MachineValue> registerValues();

} // namespace tarnSimulator
