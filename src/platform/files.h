#pragma once

#include <QString>

class QFile;

namespace tarnPlatform {

// Returns when the content of the file and its name are on the disk and would survive a power cut. False when
// that fails.
[[nodiscard]] bool flushToDisk(const QString &file);

// Renames a file in one step and replaces an existing target: at no time are both missing.
[[nodiscard]] bool replaceFile(const QString &from, const QString &to);

// Renames a file on its disk, at once or not at all, and may replace an existing target.
[[nodiscard]] bool renameFile(const QString &from, const QString &to);

// Opens the file, which has its name and need not exist, so that each write is handed to the system at once
// and lands behind what any process has written before. Others may read, rename and remove it meanwhile.
[[nodiscard]] bool openToAppend(QFile &file);

// Bytes of a file that is open, whoever has written them.
[[nodiscard]] qint64 sizeOfOpened(const QFile &file);

} // namespace tarnPlatform
