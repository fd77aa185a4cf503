#include "simulator/replay/loose_replay.h"

#include "device/ec_registers.h"
#include "simulator/recording/decoded_accesses.h"
#include "simulator/register_table.h"
#include "simulator/value_text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarnSimulator {

using namespace tarnDeviceInfos;
using tarnRecording::Recording;

RecordedRegisters::RecordedRegisters(
    MachineState &machine, ReplayProgress &replayProgress, const Recording &recording)
    : state(machine)
    , progress(replayProgress)
{
    for (const DecodedAccess &access : decodedAccesses(recording)) {
        Row &row = rows[access.address];
        (access.kind == DecodedAccess::Kind::Read ? row.reads : row.writes).push_back(access.value);
        numbers.push_back(access.number);
    }
    // The same row after each load, because the order of the addresses is the same.
    auto shared = state.replay.registers.begin();
    for (auto &[address, row] : rows) {
        if (shared == state.replay.registers.end()) {
            progress.noteDifference("the recording has more registers than can be replayed");
            return;
        }
        shared->address.store(address);
        shared->used.store(1);
        row.shared = &*shared++;
    }
}

std::uint8_t RecordedRegisters::read(std::uint16_t address)
{
    Row *row = find(address);
    if (row == nullptr || row->reads.empty()) {
        progress.noteDifference("register " + addressText(address) + " is not read in the recording");
        return 0;
    }
    const std::size_t place = row->shared->reads.load();
    const std::uint8_t value = row->reads[std::min(place, row->reads.size() - 1)];
    state.xdata[address].store(value);
    if (place < row->reads.size())
        consume(row->shared->reads);
    else
        progress.noteAfterEnd();
    return value;
}

// The next one of this value, so that one that is missing is noticed at its end.
void RecordedRegisters::write(std::uint16_t address, std::uint8_t value)
{
    state.xdata[address].store(value);
    Row *row = find(address);
    if (row == nullptr) {
        progress.noteDifference("register " + addressText(address) + " is not written in the recording");
        return;
    }
    const std::size_t place = row->shared->writes.load();
    if (place == row->writes.size()) {
        progress.noteAfterEnd();
        if (std::find(row->writes.begin(), row->writes.end(), value) != row->writes.end())
            return; // what is written in each cycle
        progress.noteDifference("the write of " + hexText(value, 2) + " to register " + addressText(address)
            + " is not in the recording");
        return;
    }
    if (row->writes[place] != value) {
        progress.noteDifference("register " + addressText(address) + ": recorded is the write of "
            + hexText(row->writes[place], 2) + ", the service wrote " + hexText(value, 2));
        return;
    }
    consume(row->shared->writes);
}

RecordedRegisters::Row *RecordedRegisters::find(std::uint16_t address)
{
    const auto found = rows.find(address);
    return found == rows.end() || found->second.shared == nullptr ? nullptr : &found->second;
}

// The steps go by the accesses of ports: those due before the register access that would be the next one are
// done.
void RecordedRegisters::consume(SharedWord &count)
{
    count.fetch_add(1);
    const std::uint64_t consumed = state.replay.consumed.fetch_add(1) + 1;
    constexpr auto all = std::numeric_limits<std::uint64_t>::max();
    progress.doSteps(consumed < numbers.size() ? numbers[consumed] - 1 : all);
}

LooseReplay::LooseReplay(
    MachineState &machine, std::unique_ptr<ReplayProgress> replayProgress, const Recording &recording)
    : progress(std::move(replayProgress))
    , registers(machine, *progress, recording)
    , nowMs(steadyNowMs)
    , channel(machine, nowMs, registers)
{ }

void LooseReplay::write(std::uint16_t port, std::uint8_t value)
{
    progress->doSteps(0);
    if (port == EC_CMD_STATUS_PORT)
        channel.writeCommand(value);
    else if (port == EC_DATA_PORT)
        channel.writeData(value);
    channel.takeInput();
    channel.presentAnswer();
}

std::uint16_t LooseReplay::read(std::uint16_t port)
{
    if (port == EC_CMD_STATUS_PORT)
        return channel.isOutputFull() ? OBF : 0;
    return port == EC_DATA_PORT ? channel.readData() : emptyBus;
}

} // namespace tarnSimulator
