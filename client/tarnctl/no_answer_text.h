#pragma once

#include <QString>

namespace tarnctl {

// Adds the possible reasons to the library's words for an answer that has not come.
[[nodiscard]] QString noAnswerText(const QString &command, const QString &libraryText);

} // namespace tarnctl
