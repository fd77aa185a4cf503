#pragma once

#include "checks.h"
#include "finding.h"

#include <QString>

#include <functional>

namespace tarnctl {

// A look at one subject.
struct Check
{
    QString subject;
    std::function<Findings(const Case &)> look;
};

// Everything that is looked at without a connection to the service, in the order of the table.
[[nodiscard]] const QList<Check> &allChecks();

// What a failing look leaves is a finding as well.
[[nodiscard]] Findings findingsOf(const QList<Check> &checks, const Case &examined);
[[nodiscard]] bool isAnyBad(const Findings &findings);

// A table with a line each, and the advice in a line of its own below it.
[[nodiscard]] QString tableOf(const Findings &findings);

} // namespace tarnctl
