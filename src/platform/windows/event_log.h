#pragma once

#include "platform/windows/service_functions.h"

#include <QString>

namespace tarnPlatform {

// Both write an error to the system's event log, with the service's name as its source. events.mc has the
// numbers of the events. Nothing happens when the log cannot be written.

// The service could not be started.
void reportStartFailure(const ServiceFunctions &functions, const QString &service, const QString &reason);
// The service ran and ends itself.
void reportFatalEnd(const ServiceFunctions &functions, const QString &service, const QString &reason);

} // namespace tarnPlatform
