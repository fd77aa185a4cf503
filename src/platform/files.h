#pragma once

#include <QString>

namespace tarnPlatform {

// Returns when the content of the file and its name are on the disk and would survive a power cut. False when
// that cannot be had.
[[nodiscard]] bool flushToDisk(const QString &file);

// Gives a file another name, in one step and whatever was there before: at no time is there neither file.
[[nodiscard]] bool replaceFile(const QString &from, const QString &to);

} // namespace tarnPlatform
