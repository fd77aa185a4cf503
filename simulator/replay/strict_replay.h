#pragma once

#include "device/recording/recording.h"
#include "simulator/recording/channel_decoder.h"
#include "simulator/register_log.h"
#include "simulator/replay/replay_progress.h"
#include "simulator/replay/replayed_ports.h"

#include <chrono>
#include <memory>
#include <string>

namespace tarnSimulator {

// Each access has to be the next one of the recording, loads of the port library included. What the service's
// accesses show of registers is put into the machine's memory and its register log, so that all that looks at
// the machine sees the recorded one.
class StrictReplay : public ReplayedPorts
{
public:
    StrictReplay(MachineState &machine, std::unique_ptr<ReplayProgress> replayProgress,
        tarnRecording::Recording recorded);

    void noteLoad() override;
    void write(std::uint16_t port, std::uint8_t value) override;
    std::uint16_t read(std::uint16_t port) override;

private:
    [[nodiscard]] const tarnRecording::EcRecord *next() const;
    // The recorded access, if this one is the next; else it is noted what was expected.
    [[nodiscard]] const tarnRecording::EcRecord *take(const tarnRecording::EcRecord &asked);
    void awaitTurn(const tarnRecording::EcRecord &record) const;
    void consume(const tarnRecording::EcRecord &record);
    void showRegister(tarnRecording::EcRecord access);
    [[nodiscard]] std::string differenceTo(const std::string &asked) const;

    MachineState &state;
    std::unique_ptr<ReplayProgress> progress;
    const tarnRecording::Recording recording;
    ChannelDecoder decoder;
    RegisterLog log;
    std::size_t shown = 0; // of what the decoder has found
    std::chrono::steady_clock::time_point served; // the access before
    const tarnRecording::EcRecord *before = nullptr; // that access; null: none since the load
};

} // namespace tarnSimulator
