#include "platform/user_session.h"

#include "platform/process_wait.h"
#include "platform/program_path.h"
#include "platform/tied_process.h"

#include <QDebug>

#include <future>
#include <memory>
#include <thread>

namespace tarnPlatform {

int UserSession::run(const QString &program, const QString &argument, std::chrono::milliseconds patience)
{
    TiedProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    if (!process.startTied(startablePath(program), {argument}))
        qWarning() << "GraphicsActive_log & GraphicsDisengaged_log: Failed to create process" << program
                   << process.errorString();
    waitForEnd(process, static_cast<int>(patience.count()));
    // Whoever has not answered by now is not asked any longer: the destructor ends the program.
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
    std::thread([started, program, argument] {
        TiedProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.setStandardInputFile(QProcess::nullDevice());
        const bool runs = process.startTied(startablePath(program), {argument});
        started->set_value(runs);
        if (runs)
            waitForEnd(process);
    }).detach();
    return isRunning.get();
}

} // namespace tarnPlatform
