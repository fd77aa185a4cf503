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

} // namespace tarnFirmwareUpdate
