#include "simulator/ec_tool/flashing_work.h"

#include <ostream>
#include <thread>

namespace tarnSimulator {

namespace {

constexpr auto longest = std::chrono::minutes(2);
constexpr auto blockTime = std::chrono::milliseconds(50);

} // namespace

bool flash(std::chrono::milliseconds time, const std::filesystem::path &untilFile, std::ostream &output)
{
    using Clock = std::chrono::steady_clock;
    const auto begun = Clock::now();
    const auto isDone = [&] {
        const auto elapsed = Clock::now() - begun;
        return elapsed >= longest
            || (elapsed >= time && (untilFile.empty() || std::filesystem::exists(untilFile)));
    };
    for (int block = 0; !isDone(); ++block) {
        output << "block " << block << " is written\n" << std::flush;
        if (!output)
            return false;
        std::this_thread::sleep_for(blockTime);
    }
    return true;
}

} // namespace tarnSimulator
