#pragma once

#include "simulator/clock.h"
#include "simulator/ec_channel.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// Decides when the EC processes the bytes in its channel: at once, unless a delay is set or one of the faults
// of the channel is on. EcChannel itself knows no delays and no faults.
class ChannelFaults
{
public:
    ChannelFaults(MachineState &machine, const NowMs &clock, FaultPanel &panel, EcChannel &ecChannel);

    // To be called before and after each access of the host, because the EC has no thread of its own.
    void letEcWork();
    // The host is about to put a byte into the input buffer.
    void beginByte();

    // What a status read of the host shows.
    [[nodiscard]] bool showsOutputFull() const;
    [[nodiscard]] bool showsInputFull() const;
    // To be called after each status read.
    void endStatusRead();

private:
    [[nodiscard]] bool isInputDue() const;
    void dealWithInput();
    void refuse(AccessKind kind);
    [[nodiscard]] std::uint64_t delayMs() const;

    MachineState &state;
    InputHoldState &hold;
    const NowMs &nowMs;
    FaultPanel &faults;
    EcChannel &channel;
};

} // namespace tarnSimulator
