#pragma once

#include "platform/windows/service_functions.h"

#include <QString>

namespace tarnPlatform {

class ServiceHost;

// Connects the process to the service manager and runs the service in it. False when that fails, for which
// the event log tells the reason; so it does when it is simply not the manager that started the process.
[[nodiscard]] bool runUnderServiceManager(const ServiceFunctions &functions, const QString &name,
    quint32 acceptedControls, ServiceHost &host, int *exitCode);

// The run of this process, if there is one, has ended.
void reportServiceStopped(int exitCode);

} // namespace tarnPlatform
