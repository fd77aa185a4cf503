#include "diagnose_command.h"

#include "answer_check.h"
#include "diagnosis.h"
#include "report.h"
#include "shared_file.h"

#include "client/command_catalogue.h"

#include <QFileInfo>
#include <QSaveFile>

namespace tarnctl {

namespace {

Findings notAsked()
{
    return {{Verdict::Unknown, QStringLiteral("answers"), QStringLiteral("not asked"),
        QStringLiteral("--connect asks; an application that is connected then has to connect again")}};
}

// Why a report must not be written there; empty when it may. Only an earlier report is replaced.
QString objectionTo(const QString &name)
{
    const QFileInfo target(name);
    if (!target.exists())
        return {};
    if (!target.isFile())
        return QStringLiteral("it is no usual file");
    QString problem;
    const auto start = readStart(name, problem, reportStart.size());
    return start == reportStart.toUtf8() ? QString() : QStringLiteral("it is there already, and no report");
}

// The file is there as a whole or not at all.
bool writeReport(const QString &name, const QString &text, ToolStreams &streams)
{
    QSaveFile file(name);
    QString objection = objectionTo(name);
    const QByteArray bytes = text.toUtf8();
    // Only the flush tells of a full disk.
    if (objection.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()
        && file.flush() && file.commit()) {
        streams.remark(
            QStringLiteral("The report is in %1. Read it before you send it to somebody.").arg(name));
        return true;
    }
    if (objection.isEmpty())
        objection = file.errorString();
    streams.complain(QStringLiteral("The report cannot be written to %1: %2").arg(name, objection));
    return false;
}

} // namespace

// The report comes first: whoever reads the table may close it early.
ExitCode runDiagnosis(const ToolOptions &options, ToolStreams &streams, Computer &computer)
{
    if (options.json) {
        streams.complain(QStringLiteral("diagnose has no JSON form."));
        return ExitCode::Usage;
    }
    const Case examined = examine(computer, options.pipeName, QDateTime::currentDateTime());
    QList<Check> checks = allChecks();
    const auto limit = options.timeout.value_or(tarn::usualLimit(QStringLiteral("getAccessoryCode")));
    checks << Check {QStringLiteral("answers"), [limit, connects = options.connects](const Case &which) {
                         return connects ? checkAnswer(which, limit) : notAsked();
                     }};
    const Findings findings = findingsOf(checks, examined);
    const bool isReported = !options.reportFile
        || writeReport(*options.reportFile, reportOf(examined, findings, options.withSerialNumbers), streams);
    static_cast<void>(streams.printLine(tableOf(findings))); // a failed write: the reader has closed it
    if (!isReported)
        return ExitCode::Usage;
    return isAnyBad(findings) ? ExitCode::ServiceFailed : ExitCode::Done;
}

} // namespace tarnctl
