// Closes the console of the program that has loaded this library, as the close button of its window does,
// when a test sets the event TarnCloseConsole-PROCESSID. (Wine has no window for it here.) As Windows does,
// it calls the handler on a thread of its own and ends the process when that returns, after 5 s at the
// latest.
#include "simulator/windows_devices/detours.h"

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>

namespace {

using namespace tarnSimulator;

constexpr DWORD handlerTimeoutMs = 5000;
constexpr UINT endedByConsole = 0xC000013A; // STATUS_CONTROL_C_EXIT

std::atomic<PHANDLER_ROUTINE> closeHandler {nullptr};

DWORD WINAPI callHandler(LPVOID)
{
    closeHandler.load()(CTRL_CLOSE_EVENT);
    return 0;
}

void awaitClosing()
{
    const std::wstring name = L"TarnCloseConsole-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE closed = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    WaitForSingleObject(closed, INFINITE);
    const HANDLE handling = CreateThread(nullptr, 0, callHandler, nullptr, 0, nullptr);
    WaitForSingleObject(handling, handlerTimeoutMs);
    TerminateProcess(GetCurrentProcess(), endedByConsole);
}

BOOL WINAPI setHandler(PHANDLER_ROUTINE handler, BOOL add)
{
    if (handler != nullptr && add && closeHandler.exchange(handler) == nullptr)
        std::thread(awaitClosing).detach();
    return SetConsoleCtrlHandler(handler, add);
}

} // namespace

namespace tarnSimulator {

std::span<const Detour> consoleDetours()
{
    static const Detour rows[] = {{"SetConsoleCtrlHandler", reinterpret_cast<void *>(setHandler)}};
    return rows;
}

} // namespace tarnSimulator
