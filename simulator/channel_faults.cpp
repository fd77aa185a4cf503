#include "simulator/channel_faults.h"

namespace tarnSimulator {

ChannelFaults::ChannelFaults(
    MachineState &machine, const NowMs &clock, FaultPanel &panel, EcChannel &ecChannel)
    : state(machine)
    , hold(machine.inputHold)
    , nowMs(clock)
    , faults(panel)
    , channel(ecChannel)
{ }

void ChannelFaults::letEcWork()
{
    if (isInputDue())
        dealWithInput();
    if (hasElapsed(nowMs(), channel.answerSinceMs(), delayMs()))
        channel.presentAnswer();
}

void ChannelFaults::beginByte()
{
    if (showsInputFull())
        state.counters.writtenWhileFull.fetch_add(1);
    hold.refused.store(0);
    hold.statusReadsLeft.store(state.timing.acceptancePolls.load());
}

bool ChannelFaults::showsOutputFull() const
{
    return channel.isOutputFull() || faults.isOn(Fault::ObfStuck);
}

bool ChannelFaults::showsInputFull() const
{
    return channel.isInputFull() || faults.isOn(Fault::IbfStuck);
}

void ChannelFaults::endStatusRead()
{
    if (const std::uint32_t reads = hold.statusReadsLeft.load(); reads > 0)
        hold.statusReadsLeft.store(reads - 1);
}

bool ChannelFaults::isInputDue() const
{
    return channel.isInputFull() && hold.statusReadsLeft.load() == 0 && !faults.isOn(Fault::IbfStuck)
        && hasElapsed(nowMs(), channel.inputSinceMs(), delayMs());
}

void ChannelFaults::dealWithInput()
{
    if (hold.refused.load() != 0) {
        hold.refused.store(0);
        channel.dropInput();
        return;
    }
    const auto access = channel.requestedAccess();
    if (!access) {
        channel.takeInput();
        return;
    }
    if (faults.refuses(access->kind, access->address))
        refuse(access->kind);
    else if (access->kind == AccessKind::Read && faults.isOn(Fault::NoAnswer))
        channel.dropInput();
    else
        channel.takeInput();
}

// A refused read is never answered. A refused write leaves its address in the input buffer, so that IBF stays
// set for so many status reads that the host gives up. With a time instead of a number, a slow host would
// find the channel free again and take the write for done.
void ChannelFaults::refuse(AccessKind kind)
{
    state.counters.refusedAccesses.fetch_add(1);
    if (kind == AccessKind::Read) {
        channel.dropInput();
        return;
    }
    hold.statusReadsLeft.store(state.timing.refusedWritePolls.load());
    hold.refused.store(1);
}

std::uint64_t ChannelFaults::delayMs() const
{
    return static_cast<std::uint64_t>(faults.value(Fault::Slow).value_or(0));
}

} // namespace tarnSimulator
