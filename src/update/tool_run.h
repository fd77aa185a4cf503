#pragma once

#include "update/flashing_tool.h"

#include <QByteArray>
#include <QStringList>

class QProcess;

namespace tarnFirmwareUpdate {

// What came of a run of an external tool.
struct ToolResult
{
    QString failure; // why it did not start, or why nobody knows what it said; else empty
    QByteArray output;
    QByteArray errors;
};

// Runs a tool in its folder until it ends, however long that takes, in a process that the caller provides.
// The tool flashes, so nothing that happens to the service may cut it off: it runs apart from it, has nothing
// to read, and prints into two files below function/, which are read at its end. They stay behind when the
// service ends first; the next run overwrites them.
[[nodiscard]] ToolResult runTool(
    QProcess &process, const FlashingTool &tool, const QStringList &arguments = {});

// Whether a tool of this process runs.
[[nodiscard]] bool isToolRunning();

// Whether an update is to be refused because a tool runs already that this process has not started: one that
// a service before this one has left behind, or that somebody has opened. Either tool stands in the way of
// either update: they would restart what the other one writes. The log then says which. One of this process
// does not count, an update waits for that.
[[nodiscard]] bool isToolLeftRunning();

} // namespace tarnFirmwareUpdate
