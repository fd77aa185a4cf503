#include "case.h"

#include "platform/paths.h"

#include <QFileInfo>

namespace tarnctl {

namespace {

// By which the log and the system may differ: the process starts before its first line, and Linux tells the
// start in whole seconds since a boot that is told in whole seconds.
constexpr qint64 mostDifference = 2; // s

ServiceProcess processOf(const Case &examined)
{
    if (!examined.programs)
        return {ServiceProcess::Known::Unreadable};
    ServiceProcess found;
    const QString own = QFileInfo(examined.installation.program()).canonicalFilePath();
    for (const TimedProgram &program : *examined.programs) {
        const bool isTheService = examined.service.processId != 0
            ? program.processId == examined.service.processId
            : !own.isEmpty() && QFileInfo(program.path).canonicalFilePath() == own;
        if (isTheService)
            return {ServiceProcess::Known::Yes, program};
        if (program.path.isEmpty())
            found.known = ServiceProcess::Known::Unreadable;
    }
    return found;
}

} // namespace

std::optional<qint64> Case::secondsSinceStart() const
{
    if (!isRunning() || !process.program.started)
        return std::nullopt;
    return process.program.started->secsTo(now);
}

bool Case::isStartOfProcess() const
{
    return start && isRunning()
        && (!process.program.started || start->time.secsTo(*process.program.started) <= mostDifference);
}

Case examine(Computer &computer, const QString &pipeName, const QDateTime &now)
{
    const ServiceEntry service = computer.service();
    const Installation installation = Installation::of(computer, service);
    const LogReader log(installation.path(tarnPlatform::path::logFolder));
    const auto programs = computer.programsCalled(QFileInfo(installation.program()).fileName());
    Case examined {computer, pipeName, now, service, installation, log, lastStart(log.lines()), programs, {}};
    examined.process = processOf(examined);
    return examined;
}

} // namespace tarnctl
