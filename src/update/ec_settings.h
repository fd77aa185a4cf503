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

// The key that a later rewrite would take the line of the firmware file for, if this is its name: that line
// would be replaced by another setting and be lost. Empty when the line stays what it is.
[[nodiscard]] std::string_view keyMistakenFor(std::string_view binName);

// Builds the line of the firmware file and says so in the log; built again if it does not name its key.
[[nodiscard]] std::string loggedBinNameLine(const std::function<std::string()> &build);

} // namespace tarnFirmwareUpdate
