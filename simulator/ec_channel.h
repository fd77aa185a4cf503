#pragma once

#include "simulator/clock.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"
#include "simulator/register_file.h"
#include "simulator/register_log.h"

namespace tarnSimulator {

// The EC's end of the second host channel: takes command and data bytes, answers reads, shows IBF and OBF.
// Nothing runs by itself; whatever has become due is done at the next port access.
class EcChannel
{
public:
    EcChannel(MachineState &machine, const NowMs &clock, FaultPanel &panel, RegisterFile &file);

    void writeCommand(std::uint8_t command);
    void writeData(std::uint8_t value);
    [[nodiscard]] std::uint8_t readStatus();
    [[nodiscard]] std::uint8_t readData();

private:
    void put(std::uint8_t kind, std::uint8_t value);
    void takeInput();
    void takeCommand(std::uint8_t command);
    void takeData(std::uint8_t value);
    void takeAddressLow(std::uint8_t value, AccessKind kind);
    void prepareAnswer(std::uint16_t address);
    void refuse(AccessKind kind);
    void presentAnswer();
    [[nodiscard]] bool isInputFull();

    [[nodiscard]] std::uint64_t delayMs() const;

    MachineState &state;
    EcChannelState &channel;
    const NowMs &nowMs;
    FaultPanel &faults;
    RegisterFile &registers;
    RegisterLog log;
};

} // namespace tarnSimulator
