#include "end_to_end/test_system.h"

#include <QProcess>

#include <csignal>

namespace tarnTest {

void prepareForStop(QProcess &) { }

void requestStop(QProcess &process)
{
    process.terminate();
}

void requestInterrupt(QProcess &process)
{
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
}

void closeTerminal(QProcess &process)
{
    ::kill(static_cast<pid_t>(process.processId()), SIGHUP);
}

bool losesIdleConnections()
{
    return false;
}

QString downloadFolder(const QString &home)
{
    return home + QStringLiteral("/Downloads");
}

} // namespace tarnTest
