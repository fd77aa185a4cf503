#include "platform/waits.h"

#include <windows.h>

#ifndef CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
#define CREATE_WAITABLE_TIMER_HIGH_RESOLUTION 0x00000002 // since Windows 10 1803; absent from older headers
#endif

namespace tarnPlatform {
namespace {

// One timer a thread, made at its first sleep and closed with it.
class SleepTimer
{
public:
    SleepTimer()
        : handle(
            CreateWaitableTimerExW(nullptr, nullptr, CREATE_WAITABLE_TIMER_HIGH_RESOLUTION, TIMER_ALL_ACCESS))
    { }
    SleepTimer(const SleepTimer &) = delete;
    SleepTimer &operator=(const SleepTimer &) = delete;
    ~SleepTimer()
    {
        if (handle)
            CloseHandle(handle);
    }

    bool sleep(std::chrono::milliseconds duration)
    {
        if (!handle)
            return false;
        LARGE_INTEGER due;
        due.QuadPart = -duration.count() * 10'000; // relative, in units of 100 ns
        return SetWaitableTimer(handle, &due, 0, nullptr, nullptr, FALSE)
            && WaitForSingleObject(handle, INFINITE) == WAIT_OBJECT_0;
    }

private:
    HANDLE handle;
};

} // namespace

void systemSleep(std::chrono::milliseconds duration)
{
    thread_local SleepTimer timer;
    if (!timer.sleep(duration))
        Sleep(static_cast<DWORD>(duration.count()));
}

} // namespace tarnPlatform
