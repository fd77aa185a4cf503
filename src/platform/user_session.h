#pragma once

#include "platform/seam.h"

#include <QString>

#include <chrono>
#include <cstddef>
#include <functional>

class QProcess;

namespace tarnPlatform {

// How far the start of a program for the user at the console got.
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
    // True in session 0; false in any other, and when the session is not known.
    [[nodiscard]] virtual bool isServiceSession() const = 0;

    // From the service session: runs a program with one argument on the desktop of the user at the console
    // and waits for its end, however long that takes.
    [[nodiscard]] virtual Launch runForConsoleUser(const QString &program, const QString &argument) = 0;

    // The download folder of the user at the console; empty when there is no such user or it is not known.
    [[nodiscard]] virtual QString consoleUserDownloadFolder() const = 0;

    // Performs the action with only the rights of the user at the console; false, without performing it, when
    // there is no such user.
    [[nodiscard]] virtual bool asConsoleUser(const std::function<void()> &action) = 0;

    // From a user's own session: runs a program and waits for its end until the time-out; returns its exit
    // code, 0 when there is none.
    [[nodiscard]] virtual int run(
        const QString &program, const QString &argument, std::chrono::milliseconds timeout);
    // The same without waiting. False when the program cannot be started.
    [[nodiscard]] virtual bool startDetached(const QString &program, const QString &argument);

protected:
    // The path by which this system finds a program. The given path is one of Windows, where a folder name
    // may end in a dot that does not count.
    [[nodiscard]] virtual QString startablePath(const QString &program) const { return program; }
    // The exit code for the log. On Unix the number of a signal that has killed the program stands in its
    // place, and that of SIGHUP, 1, must not count as a yes.
    [[nodiscard]] static int exitCodeOf(const QProcess &process);

private:
    friend class Seam<UserSession>;
    static UserSession &ofSystem();
};

// The size, in wide characters with the final zero, of the buffer from which a program is started for the
// user.
inline constexpr std::size_t launchCommandLineSize = 260;
using LaunchCommandLine = wchar_t[launchCommandLineSize];

// Writes the program in quotes and its argument; false when they do not fit.
[[nodiscard]] bool formatLaunchCommandLine(
    LaunchCommandLine &line, const QString &program, const QString &argument);

} // namespace tarnPlatform
