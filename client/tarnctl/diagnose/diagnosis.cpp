#include "diagnosis.h"

#include <QStringList>

#include <algorithm>
#include <exception>

namespace tarnctl {

namespace {

constexpr int verdictWidth = 9;
constexpr int subjectWidth = 18;

QString word(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return QStringLiteral("good");
    case Verdict::Bad:
        return QStringLiteral("bad");
    default:
        return QStringLiteral("unknown");
    }
}

Findings findingsOf(const Check &check, const Case &examined)
{
    try {
        return check.look(examined);
    } catch (const std::exception &failure) { // such as a file with more than the memory holds
        return {{Verdict::Unknown, check.subject,
            QStringLiteral("it cannot be looked at: %1").arg(QString::fromLocal8Bit(failure.what()))}};
    }
}

} // namespace

const QList<Check> &allChecks()
{
    static const QList<Check> checks {
        {QStringLiteral("installation"), checkInstallation},
        {QStringLiteral("registered"), checkRegistration},
        {QStringLiteral("running"), checkRun},
        {QStringLiteral("pipe"), checkPipe},
        {QStringLiteral("version"), checkVersions},
        {QStringLiteral("running tools"), checkTools},
        {QStringLiteral("program files"), checkProgramFiles},
        {QStringLiteral("download folder"), checkDownloads},
        {QStringLiteral("settings"), checkSettings},
        {QStringLiteral("free disk"), checkDisk},
        {QStringLiteral("log"), checkLog},
    };
    return checks;
}

Findings findingsOf(const QList<Check> &checks, const Case &examined)
{
    Findings all;
    for (const Check &check : checks)
        all += findingsOf(check, examined);
    return all;
}

bool isAnyBad(const Findings &findings)
{
    return std::any_of(findings.begin(), findings.end(),
        [](const Finding &finding) { return finding.verdict == Verdict::Bad; });
}

QString tableOf(const Findings &findings)
{
    QStringList lines;
    for (const Finding &finding : findings) {
        lines << word(finding.verdict).leftJustified(verdictWidth)
                + finding.subject.leftJustified(subjectWidth) + QStringLiteral(" ") + finding.text;
        if (!finding.advice.isEmpty())
            lines << QString(verdictWidth + subjectWidth + 1, u' ') + QStringLiteral("-> ") + finding.advice;
    }
    return lines.join(u'\n');
}

} // namespace tarnctl
