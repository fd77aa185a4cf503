#pragma once

#include "platform/windows/service_functions.h"

#include <QString>

namespace tarnPlatform {

// Writes to the system's event log that the service could not be started, and why.
void reportStartFailure(const ServiceFunctions &functions, const QString &service, const QString &reason);

} // namespace tarnPlatform
