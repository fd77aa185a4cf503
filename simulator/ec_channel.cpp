#include "simulator/ec_channel.h"

#include "device/ec_registers.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

enum Phase : std::uint8_t {
    Idle,
    ReadAddressHigh,
    ReadAddressLow,
    WriteAddressHigh,
    WriteAddressLow,
    WriteValue,
};

enum InputKind : std::uint8_t { NoInput, CommandByte, DataByte };

// Prepared: ready, but not in the output buffer yet.
enum AnswerState : std::uint8_t { NoAnswer, Prepared, Waiting };

} // namespace

EcChannel::EcChannel(MachineState &machine, const NowMs &clock, Registers &file)
    : state(machine)
    , channel(machine.channel)
    , nowMs(clock)
    , registers(file)
    , log(machine.log)
{ }

void EcChannel::writeCommand(std::uint8_t command)
{
    put(CommandByte, command);
}

void EcChannel::writeData(std::uint8_t value)
{
    put(DataByte, value);
}

// Without a new answer the port still holds the last one, as a real port does.
std::uint8_t EcChannel::readData()
{
    if (isOutputFull()) {
        channel.answerState.store(NoAnswer);
        state.counters.reads.fetch_add(1);
        log.append(AccessKind::Read, channel.answerAddress.load(), channel.answerValue.load(), nowMs());
    }
    return channel.answerValue.load();
}

bool EcChannel::isInputFull() const
{
    return channel.inputKind.load() != NoInput;
}

bool EcChannel::isOutputFull() const
{
    return channel.answerState.load() == Waiting;
}

std::optional<RequestedAccess> EcChannel::requestedAccess() const
{
    const std::uint8_t phase = channel.phase.load();
    if (channel.inputKind.load() != DataByte || (phase != ReadAddressLow && phase != WriteAddressLow))
        return std::nullopt;
    const AccessKind kind = phase == ReadAddressLow ? AccessKind::Read : AccessKind::Write;
    return RequestedAccess {kind, addressWith(channel.inputValue.load())};
}

void EcChannel::takeInput()
{
    const std::uint8_t kind = channel.inputKind.exchange(NoInput);
    const std::uint8_t value = channel.inputValue.load();
    if (kind == CommandByte)
        takeCommand(value);
    else if (kind == DataByte)
        takeData(value);
}

void EcChannel::dropInput()
{
    channel.inputKind.store(NoInput);
    channel.phase.store(Idle);
}

void EcChannel::presentAnswer()
{
    if (channel.answerState.load() == Prepared)
        channel.answerState.store(Waiting);
}

void EcChannel::put(std::uint8_t kind, std::uint8_t value)
{
    channel.inputKind.store(kind);
    channel.inputValue.store(value);
    channel.inputSinceMs.store(nowMs());
}

// A command ends the exchange before it. An answer that has not been fetched stays in the buffer; the host
// drains it.
void EcChannel::takeCommand(std::uint8_t command)
{
    state.counters.commands.fetch_add(1);
    if (channel.phase.load() != Idle)
        state.counters.abortedCommands.fetch_add(1);
    if (command == XDATA_READ_CMD)
        channel.phase.store(ReadAddressHigh);
    else if (command == XDATA_WRITE_CMD)
        channel.phase.store(WriteAddressHigh);
    else
        channel.phase.store(Idle);
}

// A data byte in phase Idle has no effect.
void EcChannel::takeData(std::uint8_t value)
{
    switch (channel.phase.load()) {
    case ReadAddressHigh:
    case WriteAddressHigh:
        channel.address.store(static_cast<std::uint16_t>(value << 8));
        channel.phase.store(channel.phase.load() == ReadAddressHigh ? ReadAddressLow : WriteAddressLow);
        break;
    case ReadAddressLow:
        channel.phase.store(Idle);
        prepareAnswer(addressWith(value));
        break;
    case WriteAddressLow:
        channel.address.store(addressWith(value));
        channel.phase.store(WriteValue);
        break;
    case WriteValue:
        channel.phase.store(Idle);
        writeRegister(value);
        break;
    default:
        break;
    }
}

void EcChannel::prepareAnswer(std::uint16_t address)
{
    channel.answerAddress.store(address);
    channel.answerValue.store(registers.read(address));
    channel.answerSinceMs.store(nowMs());
    channel.answerState.store(Prepared);
}

void EcChannel::writeRegister(std::uint8_t value)
{
    const std::uint16_t address = channel.address.load();
    registers.write(address, value);
    state.counters.writes.fetch_add(1);
    log.append(AccessKind::Write, address, value, nowMs());
}

std::uint16_t EcChannel::addressWith(std::uint8_t low) const
{
    return static_cast<std::uint16_t>((channel.address.load() & 0xFF00) | low);
}

} // namespace tarnSimulator
