#pragma once

#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

#include <QString>

namespace tarnTest {

// Whatever a test does, a host that keeps to the EC's channel ends what it has begun and looks before it
// writes. Tells what the machine has counted against that; empty when nothing. A process that is killed may
// leave one exchange unfinished, which the next one breaks off; and from an EC that takes no bytes everybody
// turns away in the middle.
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
