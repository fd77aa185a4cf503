#pragma once

#include <QString>

namespace tarnPlatform {

// How many clients may be connected at once. Where the number of descriptors is limited, some are reserved,
// because a thread that finds none left for its event loop ends the process. Asked when the server is made.
[[nodiscard]] int clientLimit();

// Removes the socket that a killed server has left behind, so that its name can be used again. Never removes
// the socket of a server that still runs.
void removeLeftoverSocket(const QString &pipeName);

} // namespace tarnPlatform
