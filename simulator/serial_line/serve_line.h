#pragma once

#include "simulator/machine_state.h"
#include "simulator/serial_line/pseudo_terminal.h"

namespace tarnSimulator {

// Blocks SIGINT, SIGTERM and SIGHUP, and returns a descriptor that becomes readable when one of them comes.
// Negative when the system refuses.
[[nodiscard]] int openStopSignals();

// Lets the boot loader answer what comes along the line until `stop` becomes readable.
void serveLine(MachineState &machine, const PseudoTerminal &line, int stop);

} // namespace tarnSimulator
