#include "end_to_end/test_system.h"

#include <QProcess>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

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

void suspend(const QProcess &process)
{
    ::kill(static_cast<pid_t>(process.processId()), SIGSTOP);
}

void resume(const QProcess &process)
{
    ::kill(static_cast<pid_t>(process.processId()), SIGCONT);
}

Terminal::Terminal(QProcess &process)
    : user(process)
    , master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0)
        qFatal("no terminal");
    // The first terminal that the leader of a session opens is the session's.
    user.setChildProcessModifier([name = std::string(::ptsname(master))] {
        ::setsid();
        ::open(name.c_str(), O_RDWR);
    });
}

Terminal::~Terminal()
{
    close();
}

void Terminal::interrupt()
{
    const char key = 3; // Ctrl+C
    if (::write(master, &key, sizeof key) != sizeof key)
        qFatal("the terminal takes no keys");
}

void Terminal::close()
{
    if (master >= 0)
        ::close(master);
    master = -1;
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
