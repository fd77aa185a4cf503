#pragma once

#include "platform/service_manager.h"

// Lets go of everything the process runs, tells the manager of a service so, and returns the exit code for a
// normal end. Where a thread is held up by the EC, a prompt or a flasher beyond a short patience, ends the
// process at once with that code instead; only an UnfinishedStep is given a little longer.
[[nodiscard]] int endProcess(
    int exitCode, tarnPlatform::ServiceManager &manager = tarnPlatform::ServiceManager::system());
