#include "checks.h"

#include "platform/paths.h"

#include <QFileInfo>

namespace tarnctl {

namespace {

Finding findingOf(const Case &examined, const QString &subject, const QString &tool)
{
    const QString path = examined.installation.path(tool);
    const auto programs = examined.computer.programsCalled(QFileInfo(path).fileName());
    if (!programs)
        return {Verdict::Unknown, subject, QStringLiteral("the processes cannot be listed"),
            advice::asAdministrator};
    bool isAnyUnreadable = false;
    for (const TimedProgram &program : *programs) {
        isAnyUnreadable = isAnyUnreadable || program.path.isEmpty();
        const QString own = QFileInfo(path).canonicalFilePath();
        if (own.isEmpty() || QFileInfo(program.path).canonicalFilePath() != own)
            continue;
        return {Verdict::Bad, subject, QStringLiteral("it still runs, process %1").arg(program.processId),
            QStringLiteral("wait for its end, never end it by hand; nothing else reaches what it flashes")};
    }
    if (isAnyUnreadable) {
        return {Verdict::Unknown, subject, QStringLiteral("one runs, and its folder may not be read"),
            advice::asAdministrator};
    }
    return {Verdict::Good, subject, QStringLiteral("none runs")};
}

} // namespace

Findings checkTools(const Case &examined)
{
    return {
        findingOf(examined, QStringLiteral("running EC tool"), tarnPlatform::path::ecTool),
        findingOf(examined, QStringLiteral("running flasher"), tarnPlatform::path::mcuTool),
    };
}

} // namespace tarnctl
