#pragma once

#include "platform/windows/unique_handle.h"

namespace tarnPlatform {

// A group of processes that ends when this object goes, or this process does: the system closes the handles
// of a process that has ended, be it killed. A job spans one session only, so each program gets its own.
class LaunchJob
{
public:
    LaunchJob();

    // The process, and what it starts from now on. A system that refuses this leaves a window that may
    // outlive the service, but a question that cannot be asked would be worse.
    void take(HANDLE process);

private:
    UniqueHandle job;
};

} // namespace tarnPlatform
