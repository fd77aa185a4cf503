#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class QProcess;

namespace tarnFirmwareUpdate {

// What came of a run of an external tool.
struct ToolResult
{
    bool started = false;
    QString failure; // why it did not start
    QByteArray output;
    QByteArray errors;
};

// Starts a tool in its folder, with nothing to read; both paths are relative to the current folder. False
// when it cannot be started; the process then says why.
[[nodiscard]] bool startTool(
    QProcess &process, const QString &program, const QStringList &arguments, const QString &folder);

// Runs a tool in its folder until it ends, however long that takes. Its output is collected meanwhile, so
// that it never waits for a reader.
[[nodiscard]] ToolResult runTool(const QString &program, const QStringList &arguments, const QString &folder);

} // namespace tarnFirmwareUpdate
