#include "checks.h"

#include <QFileInfo>

#include <algorithm>

namespace tarnctl {

namespace {

const QString running = QStringLiteral("running");
const QString lookAgain = QStringLiteral("look again in half a minute");

// The service waits four seconds for the system before it starts.
constexpr qint64 longestStartSeconds = 30;
// So long every other use of the program lives too, such as -version, because it waits as well.
constexpr qint64 youngSeconds = 5;

QString timeText(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// An ordinary user may not ask when a process of the system was started.
QString sinceText(const Case &examined)
{
    const TimedProgram &program = examined.process.program;
    const QString process = QStringLiteral(", process %1").arg(program.processId);
    if (program.started)
        return QStringLiteral("since %1").arg(timeText(*program.started)) + process;
    if (examined.start)
        return QStringLiteral("since %1, as the log says").arg(timeText(examined.start->time)) + process;
    return QStringLiteral("since a time that the system does not tell") + process;
}

QString startIt(const Case &examined)
{
    return examined.service.known == ServiceEntry::Known::Yes
        ? QStringLiteral("start it: sc.exe start \"Tarn Service\"; if it ends again, the log tells why")
        : QStringLiteral("start it; if it ends again, the log tells why");
}

Finding processFinding(const Case &examined)
{
    switch (examined.process.known) {
    case ServiceProcess::Known::Unreadable:
        return {Verdict::Unknown, running, QStringLiteral("the processes cannot be looked at"),
            advice::asAdministrator};
    case ServiceProcess::Known::No:
        return {Verdict::Bad, running, QStringLiteral("no"), startIt(examined)};
    case ServiceProcess::Known::Yes:
        break;
    }
    return {Verdict::Good, running, sinceText(examined)};
}

Finding startingFinding(const Case &examined)
{
    const auto seconds = examined.secondsSinceStart();
    if (!seconds || *seconds <= longestStartSeconds)
        return {Verdict::Unknown, running, QStringLiteral("the service is starting"), lookAgain};
    return {Verdict::Bad, running,
        QStringLiteral("the service is starting; its process is %1 s old").arg(*seconds),
        QStringLiteral("look at the last lines of the log; if they do not go on, restart the computer")};
}

Finding stoppedFinding(const Case &examined)
{
    if (examined.isRunning()) {
        return {Verdict::Unknown, running,
            QStringLiteral("the service is stopped, but its program runs in a console, %1")
                .arg(sinceText(examined)),
            QStringLiteral("end it there with Ctrl+C, then sc.exe start \"Tarn Service\"")};
    }
    const QString text = examined.service.lastExitCode == 0
        ? QStringLiteral("no, the service is stopped")
        : QStringLiteral("no, it ended with error %1").arg(examined.service.lastExitCode);
    return {Verdict::Bad, running, text, startIt(examined)};
}

Finding stateFinding(const Case &examined)
{
    switch (examined.service.state) {
    case ServiceEntry::State::Running:
        return processFinding(examined);
    case ServiceEntry::State::Paused:
        return {Verdict::Good, running, QStringLiteral("paused, which changes nothing for its clients")};
    case ServiceEntry::State::Starting:
        return startingFinding(examined);
    case ServiceEntry::State::Stopping:
        return {Verdict::Unknown, running, QStringLiteral("the service is stopping"),
            lookAgain + QStringLiteral("; if it still is, restart the computer")};
    case ServiceEntry::State::Stopped:
        return stoppedFinding(examined);
    default:
        return {
            Verdict::Unknown, running, QStringLiteral("in a state that tarnctl does not know"), lookAgain};
    }
}

// On a real computer the services of all installations have the same EC. Where there is no service manager,
// each installation has a simulated one of its own.
bool isAtSameEc(const Case &examined, const TimedProgram &program)
{
    return examined.service.known != ServiceEntry::Known::NoManager
        || QFileInfo(program.path).canonicalFilePath()
        == QFileInfo(examined.installation.program()).canonicalFilePath();
}

} // namespace

// A second service disturbs the first one at the EC.
Findings checkRun(const Case &examined)
{
    Findings findings {examined.service.known == ServiceEntry::Known::Yes ? stateFinding(examined)
                                                                          : processFinding(examined)};
    QStringList services;
    bool isAnyYoung = false;
    for (const TimedProgram &program : examined.programs.value_or(QList<TimedProgram>())) {
        if (!isAtSameEc(examined, program))
            continue;
        services << QStringLiteral("%1 (%2)")
                        .arg(program.processId)
                        .arg(program.path.isEmpty() ? QStringLiteral("?") : program.path);
        isAnyYoung = isAnyYoung || (program.started && program.started->secsTo(examined.now) <= youngSeconds);
    }
    if (services.size() < 2)
        return findings;
    const QString subject = QStringLiteral("one service only");
    const QString text =
        QStringLiteral("%1 processes run: ").arg(services.size()) + services.join(QStringLiteral(", "));
    if (isAnyYoung) {
        findings << Finding {Verdict::Unknown, subject, text, QStringLiteral("look again in ten seconds")};
        return findings;
    }
    findings << Finding {Verdict::Bad, subject, text,
        QStringLiteral("end the one that was started by hand (-exec): both disturb each other at the EC")};
    return findings;
}

} // namespace tarnctl
