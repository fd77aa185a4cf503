#pragma once

#include <QString>

#include <chrono>

inline constexpr std::chrono::milliseconds runningCheckTimeout = std::chrono::seconds(30);

// Whether the system reports a service of this name as running; false as well when it cannot be asked. Waits
// for the answer until the time-out. The name goes on the command line as it is, quotes included.
bool isServiceRunning(const QString &serviceName, std::chrono::milliseconds timeout = runningCheckTimeout);
