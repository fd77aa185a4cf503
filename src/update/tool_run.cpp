#include "update/tool_run.h"

#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/waits.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <atomic>

namespace tarnFirmwareUpdate {
namespace {

using namespace std::chrono_literals;

constexpr auto pauseAfterFailedWait = 100ms;

// Not in the folder of the tool: there a client's firmware could have this name.
QString printedBy(const FlashingTool &tool, const char *ending)
{
    return tarnPlatform::path::toolOutputFolder + QFileInfo(tool.program).completeBaseName()
        + QLatin1String(ending);
}

QByteArray content(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// An empty error file means success only if the tool could have written to it.
bool canStillWrite(const QString &name, QString *error)
{
    QFile file(name);
    const bool written = file.open(QIODevice::Append) && file.write(" ") == 1 && file.flush();
    *error = written ? QString() : file.errorString();
    return written;
}

std::atomic<int> runningTools {0};

// Counts from before the process starts, so that it is never taken for one that this service has not started.
class CountedRun
{
public:
    CountedRun() { ++runningTools; }
    ~CountedRun() { --runningTools; }
    CountedRun(const CountedRun &) = delete;
    CountedRun &operator=(const CountedRun &) = delete;
};

// The destructor of the process object would kill a tool that still runs.
void waitUntilToolHasEnded(QProcess &process)
{
    while (process.state() != QProcess::NotRunning) {
        if (!tarnPlatform::waitForEnd(process))
            tarnPlatform::sleepFor(pauseAfterFailedWait);
    }
}

} // namespace

ToolResult runTool(QProcess &process, const FlashingTool &tool, const QStringList &arguments)
{
    const QString output = printedBy(tool, ".out");
    const QString errors = printedBy(tool, ".err");
    const CountedRun counted;
    tarnPlatform::separateFromThisProcess(process);
    process.setStandardInputFile(QProcess::nullDevice()); // a tool must not wait for input
    process.setStandardOutputFile(QFileInfo(output).absoluteFilePath());
    process.setStandardErrorFile(QFileInfo(errors).absoluteFilePath());
    process.setWorkingDirectory(QFileInfo(tool.folder).absoluteFilePath());
    // By its absolute path: a relative one would be looked for from the tool's own folder on some systems.
    process.start(QFileInfo(tool.program).absoluteFilePath(), arguments, QIODevice::ReadWrite);
    ToolResult result;
    if (!process.waitForStarted(-1)) {
        result.failure = process.errorString();
    } else {
        waitUntilToolHasEnded(process);
        result.errors = content(errors);
        if (result.errors.isEmpty() && !canStillWrite(errors, &result.failure))
            result.failure.prepend(QStringLiteral("What it says cannot be kept: "));
        result.output = content(output);
    }
    QFile::remove(output);
    QFile::remove(errors);
    return result;
}

bool isToolRunning()
{
    return runningTools > 0;
}

bool isToolLeftRunning()
{
    for (const FlashingTool &tool : {FlashingTool::ofMcu(), FlashingTool::ofEc()}) {
        if (isToolRunning() || !tool.isRunning())
            continue;
        qWarning() << "Refused, because this tool is running already:" << tool.program;
        return true;
    }
    return false;
}

} // namespace tarnFirmwareUpdate
