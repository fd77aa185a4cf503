#include "platform/stop_requests.h"

#include "platform/user_session.h"

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
    // Services are told of every user's log-off; only the service manager ends them.
    if (UserSession::system().isServiceSession()
        && (control == CTRL_LOGOFF_EVENT || control == CTRL_SHUTDOWN_EVENT))
        return TRUE;
    requested = true;
    QMetaObject::invokeMethod(stopRequests, &StopRequests::stopRequested, Qt::QueuedConnection);
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

StopRequests &StopRequests::ofProcess()
{
    static auto *requests = new StopRequests;
    return *requests;
}

bool StopRequests::isRequested() const
{
    return requested;
}

StopRequests::StopRequests()
{
    listener = this;
    SetConsoleCtrlHandler(
        nullptr, FALSE); // a process started in a group of its own ignores Ctrl+C until then
    SetConsoleCtrlHandler(noteControl, TRUE);
}

} // namespace tarnPlatform
