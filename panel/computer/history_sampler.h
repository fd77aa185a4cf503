#pragma once

#include "simulator/computer_control.h"

#include <QElapsedTimer>

#include <cstdint>
#include <deque>
#include <optional>

namespace tarnPanel {

// The power limits in force and how busy the channel was, of one second.
struct HistorySample
{
    int pl1 = 0; // W
    int pl2 = 0;
    int pl4 = 0;
    double accessesPerSecond = 0;
};

// One sample a second of the last five minutes. A second in which nobody looked is a gap.
class HistorySampler
{
public:
    static constexpr std::size_t seconds = 300;

    // True when a second is over and the history has changed.
    bool look(const tarnSimulator::ComputerControl &computer);
    void startAnew();
    void add(const std::optional<HistorySample> &sample);

    // The newest is the last one.
    [[nodiscard]] const std::deque<std::optional<HistorySample>> &samples() const { return history; }

private:
    QElapsedTimer clock;
    std::uint64_t lastEnd = 0;
    std::deque<std::optional<HistorySample>> history;
};

} // namespace tarnPanel
