#pragma once

#include "platform/windows/unique_handle.h"

namespace tarnPlatform {

// A group of processes that ends with this object, or with this process, even if that is killed: the system
// closes the handles of a process that has ended. A job spans one session only, so each program gets its own.
class LaunchJob
{
public:
    LaunchJob();

    // Adds the process, and what it starts from now on. A failure is ignored: a window may then outlive the
    // service, but a question that cannot be asked would be worse.
    void take(HANDLE process);

private:
    UniqueHandle job;
};

} // namespace tarnPlatform
