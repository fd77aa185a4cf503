#pragma once

#include "platform/windows/service_functions.h"

#include <QString>

namespace tarnPlatform {

class ServiceHost;

// Connects the process to the service manager and runs the service in it. False when that fails, and the
// event log then has the reason, even if it is only that the manager did not start the process.
[[nodiscard]] bool runUnderServiceManager(const ServiceFunctions &functions, const QString &name,
    quint32 acceptedControls, ServiceHost &host, int *exitCode);

// Reports that the service of this process, if there is one, has stopped.
void reportServiceStopped(int exitCode);

} // namespace tarnPlatform
