#include "checks.h"

#include "platform/paths.h"

#include <QFileInfo>

#include <algorithm>

namespace tarnctl {

namespace {

constexpr qsizetype mostWarningsShown = 5;
constexpr qsizetype longestShown = 200; // characters of a line

bool isWarning(const LogEntry &entry)
{
    return entry.level == QStringLiteral("warning") || entry.level == QStringLiteral("critical")
        || entry.level == QStringLiteral("fatal");
}

// Much faster than to take every line apart.
bool maybeWarning(const QString &line)
{
    return line.contains(QStringLiteral(" warning 0x")) || line.contains(QStringLiteral(" critical 0x"))
        || line.contains(QStringLiteral(" fatal 0x"));
}

QString shown(const LogEntry &entry)
{
    const QString text = entry.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss ")) + entry.text;
    return text.size() <= longestShown ? text : text.left(longestShown) + QStringLiteral("...");
}

// Whether the log goes on since the process has been started; its first lines may have been in a file that is
// gone.
bool hasLinesOfProcess(const Case &examined)
{
    if (examined.isStartOfProcess())
        return true;
    const QStringList last = examined.log.lastLines(1);
    const auto entry = last.isEmpty() ? std::nullopt : logEntry(last.first());
    const auto &started = examined.process.program.started;
    return entry && started && entry->time >= *started;
}

// The process that runs must have lines in the log, or its log is written elsewhere or not at all.
Finding presence(const Case &examined)
{
    const QString subject = QStringLiteral("log");
    const QString folder = examined.installation.path(tarnPlatform::path::logFolder);
    const QString account = QStringLiteral("the service's account has to be allowed to write there");
    const QFileInfo place(folder);
    if (place.exists() && !place.isDir())
        return {Verdict::Bad, subject, QStringLiteral("%1 is no folder").arg(folder),
            QStringLiteral("remove it")};
    if (place.isDir() && !place.isReadable())
        return {Verdict::Unknown, subject, QStringLiteral("%1 may not be read").arg(folder),
            advice::asAdministrator};
    if (!examined.log.problems().isEmpty()) {
        return {Verdict::Unknown, subject, examined.log.problems().join(QStringLiteral("; ")),
            advice::asAdministrator};
    }
    if (!examined.log.hasFiles()) {
        return {examined.isRunning() ? Verdict::Bad : Verdict::Unknown, subject,
            QStringLiteral("none in %1").arg(folder), account};
    }
    if (examined.isRunning() && examined.process.program.started && !hasLinesOfProcess(examined)) {
        const bool isLate = examined.secondsSinceStart().value_or(0) > longestUntilPipeSeconds;
        return {isLate ? Verdict::Bad : Verdict::Unknown, subject,
            QStringLiteral("%1 has nothing of the process that runs").arg(folder),
            QStringLiteral("look again in ten seconds; if it stays so, ") + account};
    }
    return {Verdict::Good, subject, folder};
}

// Of the newest run that has ended; nothing when the log does not have one.
Findings lastEnd(const Case &examined)
{
    const QString subject = QStringLiteral("last end");
    QStringList lines = examined.log.lines();
    if (examined.isRunning()) {
        if (!examined.isStartOfProcess())
            return {};
        lines.resize(lines.size() - 1 - examined.start->linesSince);
    }
    const auto start = lastStart(lines);
    if (!start)
        return {};
    const QStringList ofRun = lines.mid(lines.size() - start->linesSince);
    const bool isOrderly = std::any_of(ofRun.begin(), ofRun.end(),
        [](const QString &line) { return line.endsWith(QStringLiteral(" service is Finish!")); });
    if (isOrderly)
        return {{Verdict::Good, subject, QStringLiteral("in order")}};
    return {{Verdict::Unknown, subject,
        QStringLiteral("not in order; its last line: ")
            + (ofRun.isEmpty() ? QStringLiteral("none") : ofRun.last().left(longestShown)),
        QStringLiteral("a crash, a power cut, or somebody ended the process; the lines before tell more")}};
}

} // namespace

// Warnings need not be faults: a client may have caused them. So they are shown, and only a fatal end is bad.
Findings checkLog(const Case &examined)
{
    Findings findings {presence(examined)};
    if (!examined.log.hasFiles())
        return findings;
    findings += lastEnd(examined);
    const QString subject = QStringLiteral("last warnings");
    const QStringList &lines = examined.log.lines();
    Findings warnings;
    for (qsizetype line = lines.size() - 1; line >= 0 && warnings.size() < mostWarningsShown; --line) {
        const auto entry = maybeWarning(lines.at(line)) ? logEntry(lines.at(line)) : std::nullopt;
        if (!entry || !isWarning(*entry))
            continue;
        const qsizetype linesSince = lines.size() - 1 - line;
        const bool isOfNewestRun = !examined.start || linesSince < examined.start->linesSince;
        const bool isEnd = entry->level == QStringLiteral("fatal") && isOfNewestRun;
        warnings.prepend({isEnd ? Verdict::Bad : Verdict::Unknown, subject, shown(*entry),
            isEnd ? advice::seeOperations : QString()});
    }
    if (warnings.isEmpty())
        return findings << Finding {Verdict::Good, subject, QStringLiteral("none")};
    if (warnings.last().advice.isEmpty())
        warnings.last().advice = QStringLiteral("nothing, if all works: clients cause warnings, too");
    return findings + warnings;
}

} // namespace tarnctl
