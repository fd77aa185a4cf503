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
    Wedged, // a refused write: the value byte is not taken
};

enum InputKind : std::uint8_t { NoInput, CommandByte, DataByte };

// Preparing: the host does not see OBF yet.
enum AnswerState : std::uint8_t { NoAnswer, Preparing, Waiting };

} // namespace

EcChannel::EcChannel(MachineState &machine, const NowMs &clock, FaultPanel &panel, RegisterFile &file)
    : state(machine)
    , channel(machine.channel)
    , nowMs(clock)
    , faults(panel)
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

std::uint8_t EcChannel::readStatus()
{
    registers.advance();
    takeInput();
    presentAnswer();
    const bool outputFull = channel.answerState.load() == Waiting || faults.isOn(Fault::ObfStuck);
    const int status = (outputFull ? OBF : 0) | (isInputFull() ? IBF : 0);
    return static_cast<std::uint8_t>(status);
}

// Without an answer the port still holds the last one, as a real one does.
std::uint8_t EcChannel::readData()
{
    takeInput();
    presentAnswer();
    if (channel.answerState.load() == Waiting) {
        channel.answerState.store(NoAnswer);
        state.counters.reads.fetch_add(1);
        log.append(AccessKind::Read, channel.answerAddress.load(), channel.answerValue.load(), nowMs());
    }
    return channel.answerValue.load();
}

// There is one input buffer: a byte written before the EC has taken the last one replaces it.
void EcChannel::put(std::uint8_t kind, std::uint8_t value)
{
    takeInput();
    channel.inputKind.store(kind);
    channel.inputValue.store(value);
    channel.inputSinceMs.store(nowMs());
    takeInput();
}

void EcChannel::takeInput()
{
    const std::uint8_t kind = channel.inputKind.load();
    if (kind == NoInput || faults.isOn(Fault::IbfStuck)) {
        return;
    }
    if (!hasElapsed(nowMs(), channel.inputSinceMs.load(), delayMs())) {
        return;
    }
    channel.inputKind.store(NoInput);
    const std::uint8_t value = channel.inputValue.load();
    if (kind == CommandByte) {
        takeCommand(value);
    } else {
        takeData(value);
    }
}

// A command ends whatever was going on. An answer that has not been fetched stays in the buffer; the host
// drains it.
void EcChannel::takeCommand(std::uint8_t command)
{
    state.counters.commands.fetch_add(1);
    if (channel.phase.load() != Idle) {
        state.counters.abortedCommands.fetch_add(1);
    }
    if (command == XDATA_READ_CMD) {
        channel.phase.store(ReadAddressHigh);
    } else if (command == XDATA_WRITE_CMD) {
        channel.phase.store(WriteAddressHigh);
    } else {
        channel.phase.store(Idle);
    }
}

void EcChannel::takeData(std::uint8_t value)
{
    const std::uint8_t phase = channel.phase.load();
    if (phase == ReadAddressHigh || phase == WriteAddressHigh) {
        channel.address.store(static_cast<std::uint16_t>(value << 8));
        channel.phase.store(phase == ReadAddressHigh ? ReadAddressLow : WriteAddressLow);
    } else if (phase == ReadAddressLow) {
        takeAddressLow(value, AccessKind::Read);
    } else if (phase == WriteAddressLow) {
        takeAddressLow(value, AccessKind::Write);
    } else if (phase == WriteValue) {
        channel.phase.store(Idle);
        const std::uint16_t address = channel.address.load();
        registers.write(address, value);
        state.counters.writes.fetch_add(1);
        log.append(AccessKind::Write, address, value, nowMs());
    }
    // Idle and Wedged: nobody waits for a data byte.
}

void EcChannel::takeAddressLow(std::uint8_t value, AccessKind kind)
{
    const auto address = static_cast<std::uint16_t>(channel.address.load() | value);
    channel.address.store(address);
    if (faults.refuses(kind, address)) {
        refuse(kind);
        return;
    }
    if (kind == AccessKind::Write) {
        channel.phase.store(WriteValue);
        return;
    }
    channel.phase.store(Idle);
    prepareAnswer(address);
}

void EcChannel::prepareAnswer(std::uint16_t address)
{
    if (faults.isOn(Fault::NoAnswer)) {
        return;
    }
    channel.answerAddress.store(address);
    channel.answerValue.store(registers.read(address));
    channel.answerSinceMs.store(nowMs());
    channel.answerState.store(Preparing);
    presentAnswer();
}

// A refused read is never answered. A refused write keeps IBF set until the host has given up looking: were
// it for a time instead, a slow host would find the channel free again and take the write for done.
void EcChannel::refuse(AccessKind kind)
{
    state.counters.refusedAccesses.fetch_add(1);
    if (kind == AccessKind::Read) {
        channel.phase.store(Idle);
        return;
    }
    channel.wedgedPolls.store(state.timing.refusedWritePolls.load());
    channel.phase.store(Wedged);
}

void EcChannel::presentAnswer()
{
    if (channel.answerState.load() != Preparing) {
        return;
    }
    if (hasElapsed(nowMs(), channel.answerSinceMs.load(), delayMs())) {
        channel.answerState.store(Waiting);
    }
}

// One look of the host at the input buffer.
bool EcChannel::isInputFull()
{
    if (channel.phase.load() == Wedged) {
        const std::uint32_t polls = channel.wedgedPolls.load();
        if (polls > 0) {
            channel.wedgedPolls.store(polls - 1);
            return true;
        }
        channel.phase.store(Idle);
    }
    return channel.inputKind.load() != NoInput || faults.isOn(Fault::IbfStuck);
}

std::uint64_t EcChannel::delayMs() const
{
    return static_cast<std::uint64_t>(faults.value(Fault::Slow).value_or(0));
}

} // namespace tarnSimulator
