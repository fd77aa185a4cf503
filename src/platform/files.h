#pragma once

#include <QString>

namespace tarnPlatform {

// Returns when the content of the file and its name are on the disk and would survive a power cut. False when
// that fails.
[[nodiscard]] bool flushToDisk(const QString &file);

// Renames a file in one step and replaces an existing target: at no time are both missing.
[[nodiscard]] bool replaceFile(const QString &from, const QString &to);

} // namespace tarnPlatform
