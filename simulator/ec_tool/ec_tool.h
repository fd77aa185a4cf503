#pragma once

#include <filesystem>
#include <iosfwd>

namespace tarnSimulator {

enum EcToolResult { EcFlashed = 0, EcNotFlashed = 1, EcToolWaits = 2 };

// Stands in for the EC's flashing tool: reads uiset.ini of its folder as the real tool does, and writes its
// settings and what it did into ec_tool.log. Without the settings for a silent run, with which the real tool
// would show a window and wait, it returns EcToolWaits. With a line "FlashUntil=FILE" in its settings it
// flashes until a file of that name is in its folder.
int runEcTool(const std::filesystem::path &folder, std::ostream &output, std::ostream &errors);

} // namespace tarnSimulator
