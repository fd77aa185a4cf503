#pragma once

#include "simulator/clock.h"
#include "simulator/ec_channel.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// When the EC gets round to the bytes in its channel: at once, unless it is set to take its time or one of
// the faults of the channel is on. The channel itself knows nothing of that.
class ChannelFaults
{
public:
    ChannelFaults(MachineState &machine, const NowMs &clock, FaultPanel &panel, EcChannel &ecChannel);

    // To be called around each access of the host: nothing runs by itself.
    void letEcWork();
    // The host is about to put a byte into the input buffer.
    void beginByte();

    // What the host sees at a look at the status.
    [[nodiscard]] bool showsOutputFull() const;
    [[nodiscard]] bool showsInputFull() const;
    // One look is over.
    void endLook();

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
