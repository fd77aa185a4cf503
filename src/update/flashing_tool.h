#pragma once

#include <QString>

namespace tarnFirmwareUpdate {

// An external program that flashes, with the folder below this installation that it lives and works in. Paths
// are relative to the current folder.
struct FlashingTool
{
    QString program;
    QString folder;

    static const FlashingTool &ofMcu();
    static const FlashingTool &ofEc();

    // Whether a process of it runs, whoever has started it: one of this file and not only of this name. What
    // cannot be told apart counts.
    [[nodiscard]] bool isRunning() const;
};

// Whether an update is to be refused because a tool runs already: one that a service before this one has left
// behind. The log then says so. Ask only while no update of this process runs the tool.
[[nodiscard]] bool isLeftRunning(const FlashingTool &tool);

} // namespace tarnFirmwareUpdate
