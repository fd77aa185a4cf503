#include "platform/user_session.h"

#include "platform/processes.h"

#include <QDebug>

#include <cwchar>
#include <future>
#include <memory>
#include <string>
#include <thread>

namespace tarnPlatform {

int UserSession::run(const QString &program, const QString &argument, std::chrono::milliseconds timeout)
{
    TiedProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    if (!process.startTied(startablePath(program), {argument}))
        qWarning() << "GraphicsActive_log & GraphicsDisengaged_log: Failed to create process" << program
                   << process.errorString();
    waitForEnd(process, static_cast<int>(timeout.count()));
    // A user who has not answered by now is not asked any longer: the destructor ends the program.
    return exitCodeOf(process);
}

int UserSession::exitCodeOf(const QProcess &process)
{
    const bool isSignal = process.exitStatus() == QProcess::CrashExit;
    return isSignal && process.exitCode() == 1 ? 0 : process.exitCode();
}

bool UserSession::startDetached(const QString &program, const QString &argument)
{
    const auto started = std::make_shared<std::promise<bool>>();
    std::future<bool> isRunning = started->get_future();
    std::thread([started, path = startablePath(program), argument] {
        TiedProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.setStandardInputFile(QProcess::nullDevice());
        const bool runs = process.startTied(path, {argument});
        started->set_value(runs);
        if (runs)
            waitForEnd(process);
    }).detach();
    return isRunning.get();
}

bool formatLaunchCommandLine(LaunchCommandLine &line, const QString &program, const QString &argument)
{
    const std::wstring text = L'"' + program.toStdWString() + L"\" " + argument.toStdWString();
    if (text.size() >= launchCommandLineSize)
        return false;
    std::wmemcpy(line, text.c_str(), text.size() + 1);
    return true;
}

} // namespace tarnPlatform
