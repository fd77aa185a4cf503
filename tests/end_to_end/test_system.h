#pragma once

#include <QString>

class QProcess;

namespace tarnTest {

// Called before the start: lets the process be asked to stop without the test being asked, too.
void prepareForStop(QProcess &process);
// Asks as the system or a terminal does: SIGTERM, or Ctrl+Break on the console.
void requestStop(QProcess &process);
// Asks as a person at the terminal does: SIGINT, or Ctrl+Break on the console.
void requestInterrupt(QProcess &process);
// The terminal goes: SIGHUP, or the closing of the console.
void closeTerminal(QProcess &process);

// Stops all threads of the process until it is resumed.
void suspend(const QProcess &process);
void resume(const QProcess &process);

// A terminal or console of its own for a process that is going to be started, and for the processes that this
// one starts in its own session.
class Terminal
{
public:
    explicit Terminal(QProcess &process);
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    // Ctrl+C, for every process in the terminal.
    void interrupt();
    // Takes it away, as by closing its window.
    void close();

private:
    QProcess &user;
    int master = -1;
};

// Where a process whose home folder is this one, as far as it can be chosen, looks for downloads.
[[nodiscard]] QString downloadFolder(const QString &home);

// Wine retires an idle thread after 5 s and cancels what it has begun to read, which ends the connection of a
// client that waits for a long tool run, unless it asks for something meanwhile. Windows does not.
[[nodiscard]] bool losesIdleConnections();

} // namespace tarnTest
