#include "update/tool_run.h"

#include <QFileInfo>
#include <QProcess>

namespace tarnFirmwareUpdate {

bool startTool(QProcess &process, const QString &program, const QStringList &arguments, const QString &folder)
{
    process.setWorkingDirectory(QFileInfo(folder).absoluteFilePath());
    // By its absolute path: a relative one would be looked for from the tool's own folder on some systems.
    process.start(QFileInfo(program).absoluteFilePath(), arguments, QIODevice::ReadWrite);
    if (!process.waitForStarted(-1))
        return false;
    process.closeWriteChannel(); // a tool that reads its input must not wait for a person
    return true;
}

ToolResult runTool(const QString &program, const QStringList &arguments, const QString &folder)
{
    QProcess process;
    ToolResult result;
    result.started = startTool(process, program, arguments, folder);
    if (!result.started) {
        result.failure = process.errorString();
        return result;
    }
    process.waitForFinished(-1);
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}

} // namespace tarnFirmwareUpdate
