#include "simulator/replay/replayed_ports.h"

#include "device/recording/recording.h"
#include "simulator/replay/loose_replay.h"
#include "simulator/replay/replay_control.h"
#include "simulator/replay/replay_progress.h"
#include "simulator/replay/strict_replay.h"
#include "simulator/shared_text.h"

namespace tarnSimulator {

namespace {

// Of a replay that cannot be made: the bus is empty.
class NoReplay : public ReplayedPorts
{
public:
    void noteLoad() override { }
    void write(std::uint16_t, std::uint8_t) override { }
    std::uint16_t read(std::uint16_t) override { return emptyBus; }
};

} // namespace

std::unique_ptr<ReplayedPorts> replayedPorts(MachineState &state, const std::filesystem::path &stateFile)
{
    const auto mode = static_cast<ReplayMode>(state.replay.mode.load());
    if (mode == ReplayMode::Off)
        return nullptr;
    auto progress = std::make_unique<ReplayProgress>(state, stateFile);
    std::string error = progress->error();
    auto recording = tarnRecording::readRecording(loadText(state.replay.file), error);
    if (!recording || !error.empty()) {
        progress->noteDifference(error);
        return std::make_unique<NoReplay>();
    }
    if (mode == ReplayMode::Loose)
        return std::make_unique<LooseReplay>(state, std::move(progress), *recording);
    return std::make_unique<StrictReplay>(state, std::move(progress), std::move(*recording));
}

} // namespace tarnSimulator
