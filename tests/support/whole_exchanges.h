#pragma once

#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

#include <QString>

namespace tarnTest {

// A host that keeps to the rules of the EC's channel finishes every exchange and reads the status before it
// writes. Returns the violations that the machine has counted; empty when there are none. A killed process
// may leave one exchange unfinished, which the next one breaks off; and with an EC that takes no bytes every
// host gives up in the middle.
[[nodiscard]] inline QString brokenExchanges(tarnSimulator::MachineState &state, std::uint64_t kills = 0)
{
    const std::uint64_t aborted = state.counters.abortedCommands.load();
    const std::uint64_t writtenWhileFull = state.counters.writtenWhileFull.load();
    const bool excused = tarnSimulator::FaultPanel(state).wasOn(tarnSimulator::Fault::IbfStuck);
    if (excused || (aborted <= kills && writtenWhileFull == 0))
        return {};
    return QStringLiteral(
        "%1 commands broke off unfinished ones (%2 kills), %3 bytes were written while IBF was set")
        .arg(aborted)
        .arg(kills)
        .arg(writtenWhileFull);
}

} // namespace tarnTest
