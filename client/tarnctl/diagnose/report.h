#pragma once

#include "checks.h"
#include "finding.h"

#include <QString>

namespace tarnctl {

// What each report begins with.
inline const QString reportStart = QStringLiteral("== Tarn Service, ");

// Everything that somebody needs who is asked what went wrong: the findings, the versions of the system, the
// settings files and the last lines of the log. What cannot be collected is a line of the report. It names no
// other programs of the computer, and no serial numbers unless they are wanted.
[[nodiscard]] QString reportOf(const Case &examined, const Findings &findings, bool withSerialNumbers);

} // namespace tarnctl
