#include "end_to_end/running_tarnctl.h"

#include "support/child_process.h"

#include <QFile>

namespace tarnTest {
namespace {

QString contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).remove(QLatin1Char('\r'))
                                          : QString();
}

} // namespace

RunningTarnctl::RunningTarnctl(const QStringList &arguments, const QString &program)
{
    process.setStandardOutputFile(folder.filePath(QStringLiteral("out")));
    process.setStandardErrorFile(folder.filePath(QStringLiteral("err")));
    process.start(program, arguments);
}

ToolOutcome RunningTarnctl::outcome()
{
    if (!waitForEnd(process, 60000))
        return {};
    return {process.exitCode(), contentOf(folder.filePath(QStringLiteral("out"))),
        contentOf(folder.filePath(QStringLiteral("err")))};
}

ToolOutcome tarnctl(const QStringList &arguments)
{
    return RunningTarnctl(arguments).outcome();
}

} // namespace tarnTest
