#pragma once

#include "end_to_end/service_process.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace tarnTest {

// How a program ended, and what it wrote.
struct ToolOutcome
{
    int exitCode = -1;
    QString out;
    QString err;
};

// tarnctl as a process. It writes into files and not into pipes, because under Wine the last words of a
// program that ends may not come out of its pipe.
class RunningTarnctl
{
public:
    explicit RunningTarnctl(
        const QStringList &arguments, const QString &program = builtProgram(QStringLiteral("tarnctl")));

    // When it has ended.
    [[nodiscard]] ToolOutcome outcome();

private:
    QTemporaryDir folder;
    QProcess process;
};

[[nodiscard]] ToolOutcome tarnctl(const QStringList &arguments);

} // namespace tarnTest
