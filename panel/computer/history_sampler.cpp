#include "panel/computer/history_sampler.h"

#include "device/ec_registers.h"

#include <algorithm>

namespace tarnPanel {

using namespace tarnDeviceInfos;

namespace {

constexpr qint64 sampleMs = 1000;

} // namespace

bool HistorySampler::look(const tarnSimulator::ComputerControl &computer)
{
    const std::uint64_t end = computer.registerLog().end();
    if (!clock.isValid()) {
        clock.start();
        lastEnd = end;
        return false;
    }
    const qint64 passedMs = clock.elapsed();
    if (passedMs < sampleMs)
        return false;
    const qint64 missed = std::min<qint64>(passedMs / sampleMs - 1, seconds);
    for (qint64 second = 0; second < missed; ++second)
        add(std::nullopt);
    const double passedS = static_cast<double>(passedMs) / sampleMs;
    const auto accesses = static_cast<double>(end >= lastEnd ? end - lastEnd : 0);
    add(HistorySample {computer.peek(EC_POWERMODE_PL1_CHECK), computer.peek(EC_POWERMODE_PL2_CHECK),
        computer.peek(EC_POWERMODE_PL4_CHECK), accesses / passedS});
    clock.restart();
    lastEnd = end;
    return true;
}

void HistorySampler::startAnew()
{
    clock.invalidate();
    history.clear();
}

void HistorySampler::add(const std::optional<HistorySample> &sample)
{
    history.push_back(sample);
    if (history.size() > seconds)
        history.pop_front();
}

} // namespace tarnPanel
