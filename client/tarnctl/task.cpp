#include "task.h"

namespace tarnctl {

namespace {

constexpr qsizetype mostBytesShown = 200;

} // namespace

Task::Task(const ToolOptions &toolOptions, ToolStreams &toolStreams)
    : options(toolOptions)
    , streams(toolStreams)
{ }

ExitCode Task::waitForFinish()
{
    if (!exitCode)
        loop.exec();
    return exitCode.value_or(ExitCode::Done);
}

void Task::finish(ExitCode code)
{
    if (exitCode)
        return;
    exitCode = code;
    emit finished();
    loop.quit();
}

bool Task::isFinished() const
{
    return exitCode.has_value();
}

void Task::print(const QByteArray &line)
{
    if (!streams.printLine(line))
        finish(ExitCode::Done);
}

void Task::print(const QString &line)
{
    print(line.toUtf8());
}

void Task::remark(const QString &text)
{
    streams.remark(text);
}

void Task::remarkGarbage(const QByteArray &bytes)
{
    const QString shown = QString::fromUtf8(bytes.left(mostBytesShown).toPercentEncoding(" {}[]\":,\\"));
    remark(QStringLiteral("no JSON (%1 bytes): %2").arg(bytes.size()).arg(shown));
}

} // namespace tarnctl
