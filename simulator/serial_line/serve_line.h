#pragma once

#include "simulator/machine_state.h"
#include "simulator/serial_line/pseudo_terminal.h"

namespace tarnSimulator {

// A descriptor that becomes readable when the process is asked to end (SIGINT, SIGTERM, SIGHUP), which then
// no longer ends it at once. Negative when the system refuses.
[[nodiscard]] int openStopSignals();

// Lets the boot loader answer what comes along the line until `stop` becomes readable.
void serveLine(MachineState &machine, const PseudoTerminal &line, int stop);

} // namespace tarnSimulator
