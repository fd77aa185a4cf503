#pragma once

#include "simulator/machine_state.h"

namespace tarnSimulator {

// Makes a zeroed state a valid one: header and power-on defaults.
void initialiseState(MachineState &state);

// Puts the machine into its power-on condition: nothing attached, no faults, no armed events, no replay,
// counters at zero. The EC channel is left alone, because a host may be in the middle of an exchange, and so
// is the register log, because readers keep positions in it.
void powerOn(MachineState &state);

} // namespace tarnSimulator
