#include "check_report.h"

#include "client/tarnctl/diagnose/serial_number_filter.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <algorithm>

namespace tarnctl {

namespace {

constexpr CheckVerdict verdicts[] = {
    CheckVerdict::AsExpected,
    CheckVerdict::NotAsExpected,
    CheckVerdict::NoAnswer,
    CheckVerdict::Skipped,
};

QStringList namesWith(const QList<StepOutcome> &outcomes, CheckVerdict verdict)
{
    QStringList names;
    for (const StepOutcome &outcome : outcomes) {
        if (outcome.verdict == verdict)
            names << outcome.name;
    }
    return names;
}

} // namespace

QString summaryOf(const QList<StepOutcome> &outcomes)
{
    QStringList lines;
    for (const CheckVerdict verdict : verdicts) {
        const QStringList names = namesWith(outcomes, verdict);
        const QString list = isBad(verdict) && !names.isEmpty()
            ? QStringLiteral(": ") + names.join(QStringLiteral(", "))
            : QString();
        lines << QStringLiteral("%1 %2%3").arg(
            QString::number(names.size()).rightJustified(3), wordOf(verdict).toString(), list);
    }
    return lines.join(u'\n');
}

bool isSound(const QList<StepOutcome> &outcomes)
{
    return std::none_of(
        outcomes.begin(), outcomes.end(), [](const StepOutcome &outcome) { return isBad(outcome.verdict); });
}

QString reportOf(const CheckRecord &record, bool withSerialNumbers)
{
    const QDateTime begun = record.begun.toOffsetFromUtc(record.begun.offsetFromUtc());
    const QString text = QStringLiteral("== Tarn Service, check of a computer, ")
        + begun.toString(Qt::ISODate) + QStringLiteral("\n\n") + record.versions.join(u'\n')
        + QStringLiteral("\n\n== Result\n\n") + summaryOf(record.outcomes)
        + QStringLiteral("\n\n== Files to send with this report\n\n")
        + (record.files.isEmpty() ? QStringLiteral("none") : record.files.join(u'\n'))
        + QStringLiteral("\n\n== Steps\n\n") + record.transcript.join(u'\n') + u'\n';
    return withSerialNumbers ? text : withoutSerialNumbers(text);
}

QString writeCheckReport(const QString &folder, const QString &baseName, const QString &text)
{
    const QDir place(folder);
    QString path = place.filePath(baseName + QStringLiteral(".report.txt"));
    for (int number = 2; QFile::exists(path); ++number)
        path = place.filePath(baseName + QStringLiteral(".report-%1.txt").arg(number));
    QSaveFile file(path);
    const QByteArray bytes = text.toUtf8();
    // Only the flush tells of a full disk.
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    return isWritten ? path : QString();
}

} // namespace tarnctl
