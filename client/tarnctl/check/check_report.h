#pragma once

#include "check_verdict.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace tarnctl {

struct StepOutcome
{
    QString name;
    CheckVerdict verdict;
};

// How many steps ended how, and the names of those that were not as expected.
[[nodiscard]] QString summaryOf(const QList<StepOutcome> &outcomes);
// The exit code's question: nothing was other than expected.
[[nodiscard]] bool isSound(const QList<StepOutcome> &outcomes);

// What is written into the report's file. `versions` are lines of "name: version".
struct CheckRecord
{
    QDateTime begun;
    QStringList versions;
    QList<StepOutcome> outcomes;
    QStringList files; // that belong to the report
    QStringList transcript;
};
[[nodiscard]] QString reportOf(const CheckRecord &record, bool withSerialNumbers);

// Writes the report beside the other files of the recording. A report that is there already stays: the next
// one has a number. Its path; empty when it cannot be written.
[[nodiscard]] QString writeCheckReport(const QString &folder, const QString &baseName, const QString &text);

} // namespace tarnctl
