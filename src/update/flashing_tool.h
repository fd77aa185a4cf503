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

} // namespace tarnFirmwareUpdate
