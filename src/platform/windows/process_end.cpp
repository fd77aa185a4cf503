#include "platform/process_end.h"

#include <atomic>
#include <cstdlib>
#include <windows.h>

namespace tarnPlatform {
namespace {

std::atomic<StopRequests *> listener {nullptr};

// Runs on a thread of the system. After a close the system ends the process when the handler returns (at the
// latest after 5 s), so the handler sleeps until the process ends itself. Log-off and shutdown never come
// here: the system does not report them to a process that has loaded user32, which Qt does.
BOOL WINAPI noteControl(DWORD control)
{
    StopRequests *stopRequests = listener.load();
    if (!stopRequests)
        return FALSE;
    StopRequests::noteRequest();
    QMetaObject::invokeMethod(stopRequests, &StopRequests::stopRequested, Qt::QueuedConnection);
    if (control == CTRL_CLOSE_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

StopRequests::StopRequests()
{
    listener = this;
    SetConsoleCtrlHandler(
        nullptr, FALSE); // a process started in a group of its own ignores Ctrl+C until then
    SetConsoleCtrlHandler(noteControl, TRUE);
}

// An ordinary exit takes the loader's lock, which a thread that is stuck in loading or unloading a library
// (the monitor reloads the port library) never releases.
void exitAtOnce(int code)
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::_Exit(code); // not reached
}

} // namespace tarnPlatform
