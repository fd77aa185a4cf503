#include "platform/process_end.h"

#include <atomic>
#include <cstdlib>
#include <windows.h>

namespace tarnPlatform {
namespace {

std::atomic<StopRequests *> listener {nullptr};
std::atomic<bool> requested {false};

// Runs on a thread of the system's own. After a close the process is ended as soon as the handler returns (at
// the latest after the system's 5 s), so that waits for the process to end itself. Log-off and shutdown never
// come here: the system keeps them from a process that has loaded user32, which Qt does.
BOOL WINAPI noteControl(DWORD control)
{
    StopRequests *stopRequests = listener.load();
    if (!stopRequests)
        return FALSE;
    requested = true;
    QMetaObject::invokeMethod(stopRequests, &StopRequests::stopRequested, Qt::QueuedConnection);
    if (control == CTRL_CLOSE_EVENT)
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

// An ordinary exit takes the loader's lock, which a thread that is stuck in loading or unloading a library
// (the monitor reloads the port library) never gives back.
void exitAtOnce(int code)
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::_Exit(code); // not reached
}

} // namespace tarnPlatform
