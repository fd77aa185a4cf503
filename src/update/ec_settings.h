#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tarnFirmwareUpdate {

// A line of the EC tool's settings as this board needs it, without its line end: the first known key that
// occurs anywhere in the line decides, a line without one stays as it is. `binNameLine` makes the line of the
// firmware file and is called for that line only.
[[nodiscard]] std::string settingsLine(
    std::string_view line, const std::function<std::string()> &binNameLine);

// The other key that the line of a firmware file with this name contains: a later rewrite would replace the
// line by that key's setting, and the name would be lost. Empty when there is none.
[[nodiscard]] std::string_view keyMistakenFor(std::string_view binName);

// Builds and logs the line of the firmware file; builds it once more if it does not begin with its key.
[[nodiscard]] std::string loggedBinNameLine(const std::function<std::string()> &build);

} // namespace tarnFirmwareUpdate
