#include "simulator/replay/replay_control.h"

#include "device/recording/recording.h"
#include "simulator/power_on.h"
#include "simulator/recording/decoded_accesses.h"
#include "simulator/replay/access_text.h"
#include "simulator/replay/replay_steps.h"
#include "simulator/shared_text.h"
#include "simulator/value_text.h"

#include <algorithm>
#include <fstream>

namespace tarnSimulator {

using tarnRecording::EcRecord;
using tarnRecording::Recording;
using tarnRecording::RequestRecord;

namespace {

// Port accesses, in a loose replay register accesses.
std::uint64_t replayTotal(const Recording &recording, ReplayMode mode)
{
    if (mode == ReplayMode::Loose)
        return decodedAccesses(recording).size();
    std::uint64_t count = 0;
    for (const EcRecord &record : recording.records)
        count += record.isOfPort() ? record.count : 0;
    return count;
}

bool isDevice(const RequestRecord &step)
{
    return step.kind == RequestRecord::Kind::Device;
}

void removeDevices(MachineState &state)
{
    DeviceTree devices(state);
    for (const std::int32_t slot : devices.allSlots())
        devices.remove(slot);
}

[[nodiscard]] bool writeSteps(const std::filesystem::path &path, const std::vector<RequestRecord> &steps)
{
    std::ofstream file(path, std::ios::binary);
    for (const RequestRecord &step : steps)
        file << lineOf(step);
    file.close();
    return file.good();
}

} // namespace

Replay replayOf(const MachineState &state)
{
    const ReplayState &shared = state.replay;
    Replay replay;
    replay.mode = static_cast<ReplayMode>(shared.mode.load());
    replay.file = loadText(shared.file);
    replay.consumed = shared.consumed.load();
    replay.total = shared.total.load();
    replay.steps = shared.steps.load();
    replay.stepsTotal = shared.stepsTotal.load();
    replay.after = shared.after.load();
    replay.isReloadLeft = replay.consumed == replay.total && shared.record.load() < shared.records.load();
    if (shared.differs.load() != 0)
        replay.difference = loadText(shared.difference);
    return replay;
}

std::string leftOfReplay(const MachineState &state, const std::filesystem::path &stateFile)
{
    const ReplayState &shared = state.replay;
    std::string left;
    std::string error;
    const auto recording = tarnRecording::readRecording(loadText(shared.file), error);
    const auto record = static_cast<std::size_t>(shared.record.load());
    if (recording && shared.records.load() > 0 && record < recording->records.size())
        left = "next is " + accessText(recording->records[record]);
    const std::u8string path = replayStepsPath(stateFile).u8string();
    const auto steps = tarnRecording::readRequests(std::string(path.begin(), path.end()), error);
    if (!steps || shared.steps.load() >= steps->size())
        return left;
    std::string step = lineOf(steps->at(shared.steps.load()));
    step.pop_back(); // the line feed
    return left + (left.empty() ? "" : ", ") + "the next step is \"" + printable(step) + "\"";
}

std::string prepareReplay(
    MachineState &state, const std::filesystem::path &stateFile, const PreparedReplay &prepared)
{
    if (prepared.recordingFile.size() >= replayPathSize)
        return "the name of the recording is too long";
    std::string error;
    const auto recording = tarnRecording::readRecording(prepared.recordingFile, error);
    if (!recording)
        return error;
    const std::uint64_t total = replayTotal(*recording, prepared.mode);
    if (total == 0)
        return "\"" + prepared.recordingFile + "\" has nothing to replay";
    if (!writeSteps(replayStepsPath(stateFile), prepared.steps))
        return "the steps of the replay cannot be written beside the state file";
    powerOn(state);
    if (std::any_of(prepared.steps.begin(), prepared.steps.end(), isDevice))
        removeDevices(state);
    ReplayState &shared = state.replay;
    storeText(shared.file, prepared.recordingFile);
    shared.total.store(total);
    if (prepared.mode == ReplayMode::Strict)
        shared.records.store(static_cast<std::uint32_t>(recording->records.size()));
    shared.stepsTotal.store(static_cast<std::uint32_t>(prepared.steps.size()));
    shared.mode.store(static_cast<std::uint8_t>(prepared.mode));
    return {};
}

void endReplay(MachineState &state)
{
    ReplayState &shared = state.replay;
    shared.mode.store(static_cast<std::uint8_t>(ReplayMode::Off));
    for (SharedLong *number :
        {&shared.record, &shared.repeats, &shared.consumed, &shared.total, &shared.after})
        number->store(0);
    shared.steps.store(0);
    shared.records.store(0);
    shared.stepsTotal.store(0);
    shared.differs.store(0);
    for (ReplayedRegisterState &row : shared.registers) {
        row.used.store(0);
        row.reads.store(0);
        row.writes.store(0);
    }
}

} // namespace tarnSimulator
