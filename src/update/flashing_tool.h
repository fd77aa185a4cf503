#pragma once

#include <QString>

namespace tarnFirmwareUpdate {

// An external program that flashes, with the folder below this installation that holds it and is its working
// folder. Paths are relative to the current folder.
struct FlashingTool
{
    QString program;
    QString folder;

    static const FlashingTool &ofMcu();
    static const FlashingTool &ofEc();

    // Whether a process runs this very file, not only one of the same name; it does not matter which process
    // has started it. One whose path cannot be read counts as well.
    [[nodiscard]] bool isRunning() const;
};

} // namespace tarnFirmwareUpdate
