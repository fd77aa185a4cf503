#pragma once

#include <QString>

namespace tarnPlatform {

// How many clients may be connected at once. Where a process has only so many descriptors, some are kept
// back: a thread that finds none left for its event loop ends the process. Read when the pipe opens.
[[nodiscard]] int clientLimit();

// Makes the name free again where a killed server has left its socket behind. A server that still answers is
// never displaced.
void removeLeftoverSocket(const QString &pipeName);

} // namespace tarnPlatform
