#include "platform/user_session.h"

#include "platform/program_path.h"

#include <QDebug>
#include <QProcess>

namespace tarnPlatform {

int UserSession::run(const QString &program, const QString &argument, std::chrono::milliseconds patience)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(startablePath(program), {argument}, QIODevice::ReadWrite);
    const bool ended = process.waitForFinished(static_cast<int>(patience.count()));
    if (!ended && process.error() == QProcess::FailedToStart)
        qWarning() << "GraphicsActive_log & GraphicsDisengaged_log: Failed to create process" << program
                   << process.errorString();
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
    return QProcess::startDetached(startablePath(program), {argument});
}

} // namespace tarnPlatform
