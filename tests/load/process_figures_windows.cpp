#include "load/process_figures.h"

#include <windows.h>

#include <psapi.h>

namespace tarnLoad {
namespace {

constexpr double bytesInMib = 1024 * 1024;
constexpr quint64 ticksInMs = 10000; // of 100 ns

quint64 ticks(const FILETIME &time)
{
    return (static_cast<quint64>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

} // namespace

ProcessFigures figuresOf(qint64 processId)
{
    ProcessFigures figures;
    const HANDLE process =
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, static_cast<DWORD>(processId));
    if (!process)
        return figures;
    PROCESS_MEMORY_COUNTERS_EX memory {};
    if (GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS *>(&memory), sizeof memory)) {
        figures.memoryMib = static_cast<double>(memory.PrivateUsage) / bytesInMib;
        figures.peakMib = static_cast<double>(memory.PeakPagefileUsage) / bytesInMib;
    }
    FILETIME created, ended, kernel, user;
    if (GetProcessTimes(process, &created, &ended, &kernel, &user))
        figures.cpuMs = static_cast<qint64>((ticks(kernel) + ticks(user)) / ticksInMs);
    DWORD handles = 0;
    if (GetProcessHandleCount(process, &handles))
        figures.handles = static_cast<int>(handles);
    CloseHandle(process);
    return figures;
}

} // namespace tarnLoad
