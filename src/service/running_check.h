#pragma once

#include <QString>

// Whether the system reports a service of this name as running; false as well when it cannot be asked. Waits
// for the answer for at most 30 s. The name goes on the command line as it is, quotes included.
bool isServiceRunning(const QString &serviceName);
