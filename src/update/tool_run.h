#pragma once

#include "update/flashing_tool.h"

#include <QByteArray>
#include <QStringList>

class QProcess;

namespace tarnFirmwareUpdate {

// The result of a run of an external tool.
struct ToolResult
{
    QString failure; // why it did not start, or why its output is not known; else empty
    QByteArray output;
    QByteArray errors;
};

// Runs a tool in its folder until it ends, however long that takes, in a process that the caller provides.
// The tool flashes, so nothing that happens to the service may interrupt it: it is separated from the
// service's process (separateFromThisProcess), gets no input, and prints into two files below function/,
// which are read at its end. If the service ends first, they stay; the next run overwrites them.
[[nodiscard]] ToolResult runTool(
    QProcess &process, const FlashingTool &tool, const QStringList &arguments = {});

// Whether a tool that this process has started runs.
[[nodiscard]] bool isToolRunning();

// Whether an update is to be refused because a tool runs already that this process has not started: one that
// an earlier run of the service has left behind, or that a user has opened. Either tool blocks either update,
// because each would restart what the other one writes. The log then says which. A tool that this process has
// started does not count: the update waits for it.
[[nodiscard]] bool isToolLeftRunning();

} // namespace tarnFirmwareUpdate
