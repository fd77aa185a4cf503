#include "platform/windows/launch_job.h"

namespace tarnPlatform {

LaunchJob::LaunchJob()
    : job(CreateJobObjectW(nullptr, nullptr))
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
}

void LaunchJob::take(HANDLE process)
{
    AssignProcessToJobObject(job.get(), process);
}

} // namespace tarnPlatform
