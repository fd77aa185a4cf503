#pragma once

#include "simulator/clock.h"
#include "simulator/machine_state.h"
#include "simulator/register_log.h"
#include "simulator/registers.h"

#include <optional>

namespace tarnSimulator {

// A register access that the host has requested and the EC has not made yet.
struct RequestedAccess
{
    AccessKind kind;
    std::uint16_t address;
};

// The EC's end of the second host channel: an input buffer of one byte (IBF), an output buffer of one byte
// (OBF), and between them the commands that read and write a register. The host's side fills and empties the
// buffers; the EC works on them when ChannelFaults tells it to.
class EcChannel
{
public:
    EcChannel(MachineState &machine, const NowMs &clock, Registers &file);

    // The host's side. The input buffer holds one byte: a byte written before the EC has taken the last one
    // replaces it.
    void writeCommand(std::uint8_t command);
    void writeData(std::uint8_t value);
    [[nodiscard]] std::uint8_t readData();
    [[nodiscard]] bool isInputFull() const;
    [[nodiscard]] bool isOutputFull() const;

    // The EC's side. The access whose address the byte in the input buffer completes, if it does.
    [[nodiscard]] std::optional<RequestedAccess> requestedAccess() const;
    void takeInput();
    // Forgets the byte and the exchange that it belongs to.
    void dropInput();
    // Puts an answer that is ready into the output buffer.
    void presentAnswer();

    [[nodiscard]] std::uint64_t inputSinceMs() const { return channel.inputSinceMs.load(); }
    [[nodiscard]] std::uint64_t answerSinceMs() const { return channel.answerSinceMs.load(); }

private:
    void put(std::uint8_t kind, std::uint8_t value);
    void takeCommand(std::uint8_t command);
    void takeData(std::uint8_t value);
    void prepareAnswer(std::uint16_t address);
    void writeRegister(std::uint8_t value);
    [[nodiscard]] std::uint16_t addressWith(std::uint8_t low) const;

    MachineState &state;
    EcChannelState &channel;
    const NowMs &nowMs;
    Registers &registers;
    RegisterLog log;
};

} // namespace tarnSimulator
