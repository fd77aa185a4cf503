#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tarnFirmwareUpdate {

// What came of a run of an external tool.
struct ToolResult
{
    bool started = false;
    QString failure; // why it did not start
    QByteArray output;
    QByteArray errors;
};

// Runs a tool in its folder until it ends, however long that takes; both paths are relative to the current
// folder. Its output is collected meanwhile, so that it never waits for a reader.
[[nodiscard]] ToolResult runTool(const QString &program, const QStringList &arguments, const QString &folder);

} // namespace tarnFirmwareUpdate
