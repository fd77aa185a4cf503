#pragma once

#include "case.h"
#include "finding.h"

namespace tarnctl {

// From the start of the process until its pipe and its log are there: 4 s of waiting for the system, and the
// rest.
inline constexpr qint64 longestUntilPipeSeconds = 10;

// Each looks at one subject and changes nothing.
[[nodiscard]] Findings checkInstallation(const Case &examined);
[[nodiscard]] Findings checkRegistration(const Case &examined);
[[nodiscard]] Findings checkRun(const Case &examined);
[[nodiscard]] Findings checkPipe(const Case &examined);
[[nodiscard]] Findings checkVersions(const Case &examined);
[[nodiscard]] Findings checkTools(const Case &examined);
[[nodiscard]] Findings checkProgramFiles(const Case &examined);
[[nodiscard]] Findings checkDownloads(const Case &examined);
[[nodiscard]] Findings checkSettings(const Case &examined);
[[nodiscard]] Findings checkDisk(const Case &examined);
[[nodiscard]] Findings checkLog(const Case &examined);

} // namespace tarnctl
