#pragma once

#include "device/recording/recording.h"
#include "simulator/ec_channel.h"
#include "simulator/registers.h"
#include "simulator/replay/replay_progress.h"
#include "simulator/replay/replayed_ports.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace tarnSimulator {

// The registers of a recording: each gives the values that were read from it, in their order, and takes those
// that were written to it. After the last one it goes on giving that.
class RecordedRegisters : public Registers
{
public:
    RecordedRegisters(
        MachineState &machine, ReplayProgress &replayProgress, const tarnRecording::Recording &recording);

    [[nodiscard]] std::uint8_t read(std::uint16_t address) override;
    void write(std::uint16_t address, std::uint8_t value) override;

private:
    struct Row
    {
        std::vector<std::uint8_t> reads;
        std::vector<std::uint8_t> writes;
        ReplayedRegisterState *shared = nullptr; // how many of them have been consumed
    };

    [[nodiscard]] Row *find(std::uint16_t address);
    void consume(SharedWord &count);

    MachineState &state;
    ReplayProgress &progress;
    std::map<std::uint16_t, Row> rows;
    std::vector<std::uint64_t> numbers; // of the first port access of each register access
};

// Answers each access of a register that the recording has, at once and in any order.
class LooseReplay : public ReplayedPorts
{
public:
    LooseReplay(MachineState &machine, std::unique_ptr<ReplayProgress> replayProgress,
        const tarnRecording::Recording &recording);

    void noteLoad() override { }
    void write(std::uint16_t port, std::uint8_t value) override;
    std::uint16_t read(std::uint16_t port) override;

private:
    std::unique_ptr<ReplayProgress> progress;
    RecordedRegisters registers;
    NowMs nowMs;
    EcChannel channel;
};

} // namespace tarnSimulator
