#pragma once

#include <filesystem>
#include <iosfwd>

namespace tarnSimulator {

enum EcToolResult { EcFlashed = 0, EcNotFlashed = 1, EcToolWaits = 2 };

// Stands in for the EC's flashing tool: reads uiset.ini of its folder as that one does, and writes into
// ec_tool.log what it was told and what it did. Without its silent settings it would show a window and wait.
// With a line "FlashUntil=FILE" in its settings it flashes until a file of that name is in its folder.
int runEcTool(const std::filesystem::path &folder, std::ostream &output, std::ostream &errors);

} // namespace tarnSimulator
