#include "platform/stop_requests.h"

#include <atomic>
#include <windows.h>

namespace tarnPlatform {
namespace {

std::atomic<StopRequests *> listener {nullptr};
std::atomic<bool> requested {false};

// Runs on a thread of the system's own. After a close, log-off or shutdown the process is ended as soon as
// the handler returns (at the latest after the system's 5 s), so those wait for the process to end itself.
BOOL WINAPI noteControl(DWORD control)
{
    StopRequests *stopRequests = listener.load();
    if (!stopRequests)
        return FALSE;
    requested = true;
    QMetaObject::invokeMethod(stopRequests, &StopRequests::stopRequested, Qt::QueuedConnection);
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

StopRequests::StopRequests()
{
    requested = false;
    listener = this;
    SetConsoleCtrlHandler(noteControl, TRUE);
}

StopRequests::~StopRequests()
{
    SetConsoleCtrlHandler(noteControl, FALSE);
    listener = nullptr;
}

bool StopRequests::isRequested() const
{
    return requested;
}

} // namespace tarnPlatform
