#pragma once

#include "computer.h"

#include <windows.h>

namespace tarnctl {

// Adds what these say of the recovery; each is null when the service manager did not tell it.
void addRecovery(
    ServiceEntry &entry, const SERVICE_FAILURE_ACTIONSW *actions, const SERVICE_FAILURE_ACTIONS_FLAG *flag);

// What the service manager tells of the service with this name.
[[nodiscard]] ServiceEntry readServiceEntry(const QString &name);

} // namespace tarnctl
