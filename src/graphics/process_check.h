#pragma once

#include <QString>

namespace tarnAccessoryManager {

// Whether a program of that file name runs, in any spelling of upper and lower case.
[[nodiscard]] bool isProcessRunning(const QString &name);

} // namespace tarnAccessoryManager
