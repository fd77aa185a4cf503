#pragma once

#include "device/recording/ec_record.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tarnRecording {

// A recording of the EC's ports, as far as its file can be read.
struct Recording
{
    RecordingHeader header;
    std::vector<EcRecord> records;
    std::size_t damagedLine = 0; // from which on nothing was read; 0: all was
    // Whether that line is whole, so that it was changed. A crash cuts the file off within a line.
    bool isDamagedInside = false;
};

// Paths are UTF-8, on Windows too.
[[nodiscard]] std::filesystem::path nativePath(const std::string &path);

// In bytes, with room above the 64 MiB at which the service begins another one.
inline constexpr std::uintmax_t largestRecording = std::uintmax_t {80} * 1024 * 1024;

// Nothing when there is no recording in the file, or it is larger; then the error says why.
[[nodiscard]] std::optional<Recording> readRecording(const std::string &path, std::string &error);

} // namespace tarnRecording
