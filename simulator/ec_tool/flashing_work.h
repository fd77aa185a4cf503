#pragma once

#include <chrono>
#include <filesystem>
#include <iosfwd>

namespace tarnSimulator {

// The part of a simulated flashing tool that takes its time. It prints how far it is all the while, as the
// real ones do, and is cut off when it cannot: false then. It takes that long at least; if a file is named it
// goes on until that file exists, but for two minutes at most.
[[nodiscard]] bool flash(
    std::chrono::milliseconds time, const std::filesystem::path &untilFile, std::ostream &output);

} // namespace tarnSimulator
