#pragma once

#include "platform/seam.h"

#include <QString>

#include <chrono>
#include <cstddef>
#include <functional>

class QProcess;

namespace tarnPlatform {

// How far a program got that was started for the user of the console.
enum class LaunchStage { NoActiveSession, NoUserToken, NoTokenCopy, NoProcess, NoExitCode, Ended };

struct Launch
{
    LaunchStage stage = LaunchStage::NoActiveSession;
    quint32 exitCode = 0; // only of a program that has ended
};

// The session that the service runs in, and programs with a window for the user, which end with the service
// at the latest. Any thread.
class UserSession : public Seam<UserSession>
{
public:
    virtual ~UserSession() = default;
    // True in session 0; false in any other, and when the session cannot be told.
    [[nodiscard]] virtual bool isServiceSession() const = 0;

    // From the service session: runs a program with one argument on the desktop of whoever sits at the
    // console and waits for its end, however long that takes.
    [[nodiscard]] virtual Launch runForConsoleUser(const QString &program, const QString &argument) = 0;

    // Where the user at the console finds downloads; empty when there is none or it cannot be told.
    [[nodiscard]] virtual QString consoleUserDownloadFolder() const = 0;

    // Does something with no more rights than the user at the console has; false when there is none, and then
    // it is not done.
    [[nodiscard]] virtual bool asConsoleUser(const std::function<void()> &action) = 0;

    // From a user's own session: runs a program and waits for its end for at most so long; its exit code, 0
    // as long as there is none.
    [[nodiscard]] virtual int run(
        const QString &program, const QString &argument, std::chrono::milliseconds timeout);
    // The same without waiting. False when the program cannot be started.
    [[nodiscard]] virtual bool startDetached(const QString &program, const QString &argument);

protected:
    // The form in which this system finds a program by a path as Windows takes it: there, a folder name may
    // end in a dot that does not count.
    [[nodiscard]] virtual QString startablePath(const QString &program) const { return program; }
    // The exit code for the log. On Unix the number of a signal that has killed the program stands in its
    // place, and that of SIGHUP, 1, must not pass for a yes.
    [[nodiscard]] static int exitCodeOf(const QProcess &process);

private:
    friend class Seam<UserSession>;
    static UserSession &ofSystem();
};

// Wide characters, with the final zero: there is no room for more where a program is started for the user.
inline constexpr std::size_t launchCommandLineSize = 260;
using LaunchCommandLine = wchar_t[launchCommandLineSize];

// Writes the program in quotes and its argument; false when they do not fit.
[[nodiscard]] bool formatLaunchCommandLine(
    LaunchCommandLine &line, const QString &program, const QString &argument);

} // namespace tarnPlatform
