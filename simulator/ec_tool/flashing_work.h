#pragma once

#include <chrono>
#include <filesystem>
#include <iosfwd>

namespace tarnSimulator {

// The flashing of a simulated tool. It prints its progress all the time, as the real tools do; when it cannot
// print, it stops and returns false. It takes `time` at least; if a file is named it goes on until that file
// exists, but for two minutes at most.
[[nodiscard]] bool flash(
    std::chrono::milliseconds time, const std::filesystem::path &untilFile, std::ostream &output);

} // namespace tarnSimulator
