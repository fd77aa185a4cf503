#include "simulator/recording/channel_decoder.h"

#include "device/ec_registers.h"
#include "simulator/register_table.h"
#include "simulator/value_text.h"

#include <algorithm>

namespace tarnSimulator {

using namespace tarnDeviceInfos;
using tarnRecording::EcRecord;

namespace {

constexpr std::uint8_t lowByte(std::uint16_t value)
{
    return static_cast<std::uint8_t>(value & 0xFF);
}

} // namespace

void ChannelDecoder::VainLooks::add(const EcRecord &record)
{
    if (count == 0)
        firstUs = record.us;
    count += record.count;
    lastUs = record.count > 1 ? record.lastUs : record.us;
}

std::uint64_t ChannelDecoder::VainLooks::end()
{
    const std::uint64_t span = lastUs - firstUs;
    *this = {};
    return span;
}

ChannelDecoder::ChannelDecoder(std::uint64_t firstAccess)
    : number(firstAccess)
    , hasBegun(firstAccess == 1)
{ }

void ChannelDecoder::take(const EcRecord &record)
{
    lastUs = std::max(record.us, record.lastUs);
    if (record.kind == EcRecord::Kind::Load || record.kind == EcRecord::Kind::Unload) {
        takeLibrary(record);
        return;
    }
    const bool isStatusPort = record.port == EC_CMD_STATUS_PORT;
    if (!isStatusPort && record.port != EC_DATA_PORT)
        strangers[record.port] += record.count;
    else if (record.kind == EcRecord::Kind::Out)
        isStatusPort ? takeCommand(record) : takeData(record);
    else
        isStatusPort ? takeStatus(record) : takeAnswer(record);
    number += record.count;
}

// A service that is killed, or that ends, leaves an access in the middle.
void ChannelDecoder::finish()
{
    if (byteSinceUs && full.count > 0)
        accessOfByte().acceptanceWaitUs = std::max(accessOfByte().acceptanceWaitUs, full.end());
    if (phase != Phase::Idle)
        cutOff = {number, lastUs, "the recording ends in the middle of " + currentText(), false};
    phase = Phase::Idle;
}

void ChannelDecoder::takeLibrary(const EcRecord &record)
{
    const bool isUnload = record.kind == EcRecord::Kind::Unload;
    if (!isUnload && record.result != EcRecord::LoadResult::Ok)
        note(record, "the port library could not be loaded");
    if (phase != Phase::Idle)
        breakOff(record, isUnload ? "the port library was unloaded" : "the port library was loaded");
    else if (isUnload)
        note(record, "the port library was unloaded", false);
}

void ChannelDecoder::takeStatus(const EcRecord &record)
{
    const std::uint8_t status = lowByte(record.value);
    otherBits |= static_cast<std::uint8_t>(status & ~(OBF | IBF));
    wasOutputFull = (status & OBF) != 0;
    if (!wasOutputFull)
        drained = 0;
    if (phase == Phase::Answer)
        lookForAnswer(record);
    if (status & IBF)
        noteFull(record);
    else
        noteTaken(record);
}

void ChannelDecoder::lookForAnswer(const EcRecord &record)
{
    if (!wasOutputFull) {
        unanswered.add(record);
        return;
    }
    if (current.answerUs)
        return;
    current.answerUs = record.us - current.addressUs;
    current.answerWaitUs = unanswered.end();
}

void ChannelDecoder::noteFull(const EcRecord &record)
{
    full.add(record);
    if (full.count < mostLooks)
        return;
    const std::string where = phase == Phase::Idle ? std::string() : ", in " + currentText();
    note(record, "IBF stayed set through " + std::to_string(full.count) + " looks" + where);
    if (phase == Phase::Idle && byteSinceUs)
        decoded.back().isRefused = true;
    full = {};
    unanswered = {};
    phase = Phase::Idle;
    byteSinceUs.reset();
}

void ChannelDecoder::noteTaken(const EcRecord &record)
{
    const std::uint64_t waitUs = full.end();
    if (!byteSinceUs)
        return;
    DecodedAccess &access = accessOfByte();
    access.acceptanceUs.push_back(record.us - *byteSinceUs);
    access.acceptanceWaitUs = std::max(access.acceptanceWaitUs, waitUs);
    access.takenUs = record.us;
    byteSinceUs.reset();
}

void ChannelDecoder::takeCommand(const EcRecord &record)
{
    breakOff(record, "another command began");
    hasBegun = true;
    drained = 0;
    const std::uint8_t command = lowByte(record.value);
    if (command == XDATA_READ_CMD)
        begin(DecodedAccess::Kind::Read, Phase::ReadHigh, record);
    else if (command == XDATA_WRITE_CMD)
        begin(DecodedAccess::Kind::Write, Phase::WriteHigh, record);
    else
        note(record, "unknown command " + hexText(command, 2));
}

void ChannelDecoder::takeData(const EcRecord &record)
{
    if (!hasBegun)
        return;
    const std::uint8_t byte = lowByte(record.value);
    if (phase == Phase::Idle || phase == Phase::Answer) {
        breakOff(record, "a byte came instead of the look for the answer");
        note(record, "byte " + hexText(byte, 2) + " without a command");
        return;
    }
    noteByte(record);
    switch (phase) {
    case Phase::ReadHigh:
    case Phase::WriteHigh:
        current.address = static_cast<std::uint16_t>(byte << 8);
        phase = phase == Phase::ReadHigh ? Phase::ReadLow : Phase::WriteLow;
        break;
    case Phase::ReadLow:
    case Phase::WriteLow:
        current.address = static_cast<std::uint16_t>(current.address | byte);
        current.addressUs = record.us;
        phase = phase == Phase::ReadLow ? Phase::Answer : Phase::WriteValue;
        break;
    default:
        complete(byte, record);
    }
}

// Without a read before it the host empties the buffer.
void ChannelDecoder::takeAnswer(const EcRecord &record)
{
    if (phase == Phase::Answer) {
        complete(lowByte(record.value), record);
        return;
    }
    if (phase != Phase::Idle) {
        breakOff(record, "the data port was read");
        return;
    }
    if (!wasOutputFull || ++drained != mostDrained)
        return;
    note(record, "OBF stayed set, though the data port was read " + std::to_string(mostDrained) + " times");
}

void ChannelDecoder::begin(DecodedAccess::Kind kind, Phase next, const EcRecord &record)
{
    current = {};
    current.kind = kind;
    current.number = number;
    current.startUs = record.us;
    current.thread = record.thread;
    phase = next;
    noteByte(record);
}

// A read needs no more than the answer; what is written has still to be taken.
void ChannelDecoder::complete(std::uint8_t value, const EcRecord &record)
{
    current.value = value;
    current.endUs = record.us;
    decoded.push_back(current);
    phase = Phase::Idle;
    unanswered = {};
}

void ChannelDecoder::noteByte(const EcRecord &record)
{
    byteSinceUs = record.us;
    current.takenUs.reset();
    current.endUs = record.us;
    full = {};
    unanswered = {};
}

void ChannelDecoder::breakOff(const EcRecord &record, const std::string &why)
{
    if (phase != Phase::Idle) {
        const std::string vain = unanswered.count > 0
            ? "no answer in " + std::to_string(unanswered.count) + " looks, then "
            : std::string();
        note(record, currentText() + " was not finished: " + vain + why);
    }
    phase = Phase::Idle;
    byteSinceUs.reset();
    full = {};
    unanswered = {};
}

void ChannelDecoder::note(const EcRecord &record, const std::string &text, bool isBroken)
{
    found.push_back({number, record.us, text, isBroken});
}

std::string ChannelDecoder::currentText() const
{
    const std::string kind = current.kind == DecodedAccess::Kind::Read ? "a read" : "a write";
    const bool hasAddress = phase == Phase::Answer || phase == Phase::WriteValue;
    return kind + (hasAddress ? " of " + addressText(current.address) : std::string());
}

} // namespace tarnSimulator
