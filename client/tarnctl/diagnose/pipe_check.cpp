#include "checks.h"

namespace tarnctl {

namespace {

Finding presence(const Case &examined, const PipeState &pipe)
{
    const QString subject = QStringLiteral("pipe %1").arg(examined.pipeName);
    const ServiceProcess::Known isRunning = examined.process.known;
    if (!pipe.problem.isEmpty())
        return {Verdict::Unknown, subject, pipe.problem, QStringLiteral("look at the name of the pipe")};
    if (pipe.exists) {
        if (isRunning == ServiceProcess::Known::No) {
            return {Verdict::Bad, subject, QStringLiteral("there, although the service does not run"),
                QStringLiteral("another program owns the name, or a service was killed: start the service")};
        }
        return {Verdict::Good, subject, QStringLiteral("there")};
    }
    if (isRunning == ServiceProcess::Known::Unreadable)
        return {Verdict::Unknown, subject, QStringLiteral("not there; whether the service runs is not known"),
            advice::asAdministrator};
    if (isRunning == ServiceProcess::Known::No)
        return {Verdict::Bad, subject, QStringLiteral("not there, because the service does not run"),
            QStringLiteral("start it, see above")};
    const auto seconds = examined.secondsSinceStart();
    if (seconds && *seconds <= longestUntilPipeSeconds) {
        return {Verdict::Unknown, subject, QStringLiteral("not there yet, the service has just been started"),
            QStringLiteral("look again in ten seconds")};
    }
    return {Verdict::Bad, subject, QStringLiteral("not there, although the service runs"),
        QStringLiteral("restart the service; another program may have owned the name when it started")};
}

Finding permission(const PipeState &pipe)
{
    const QString subject = QStringLiteral("may connect");
    if (!pipe.mayConnect)
        return {Verdict::Unknown, subject, QStringLiteral("the system does not tell"),
            QStringLiteral("look again when the pipe is there")};
    if (!*pipe.mayConnect) {
        return {Verdict::Bad, subject, QStringLiteral("not this user: only administrators may"),
            QStringLiteral("start the client, and this tool, as administrator")};
    }
    return {Verdict::Good, subject, QStringLiteral("this user")};
}

} // namespace

Findings checkPipe(const Case &examined)
{
    const PipeState pipe = examined.computer.pipe(examined.pipeName);
    return {presence(examined, pipe), permission(pipe)};
}

} // namespace tarnctl
