#pragma once

#include "platform/service_manager.h"

// Stops everything that the process runs, reports the stop to the manager of a service, and returns the exit
// code for a normal end. If the EC, a prompt or a flasher holds a thread up for longer than endBudget allows,
// ends the process at once with that code instead; only an UnfinishedStep gets a little longer.
[[nodiscard]] int endProcess(
    int exitCode, tarnPlatform::ServiceManager &manager = tarnPlatform::ServiceManager::system());
