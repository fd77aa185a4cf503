#include "simulator/replay/service_pipe.h"

#include <array>
#include <windows.h>

namespace tarnSimulator {

namespace {

constexpr DWORD longestReadingMs = 10000;

// An event for one operation.
class Completion
{
public:
    Completion() { operation.hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr); }
    ~Completion() { ::CloseHandle(operation.hEvent); }
    Completion(const Completion &) = delete;
    Completion &operator=(const Completion &) = delete;

    // How many bytes it has moved; what is not done within the limit is cancelled.
    [[nodiscard]] DWORD await(HANDLE pipe)
    {
        DWORD moved = 0;
        if (::WaitForSingleObject(operation.hEvent, longestReadingMs) != WAIT_OBJECT_0)
            ::CancelIoEx(pipe, &operation);
        return ::GetOverlappedResult(pipe, &operation, &moved, TRUE) != 0 ? moved : 0;
    }

    OVERLAPPED operation {};
};

bool hasBegun(BOOL result)
{
    return result != FALSE || ::GetLastError() == ERROR_IO_PENDING;
}

} // namespace

// The service's pipe has no buffer, so a write is done when the service has read it.
bool ServicePipe::write(const std::string &message)
{
    open();
    if (handle == nullptr)
        return false;
    Completion completion;
    const auto size = static_cast<DWORD>(message.size());
    if (hasBegun(::WriteFile(handle, message.data(), size, nullptr, &completion.operation))
        && completion.await(handle) == size)
        return true;
    close();
    return false;
}

// Only what has come, so the read does not wait.
void ServicePipe::drain()
{
    std::array<char, 4096> bytes {};
    DWORD waiting = 0;
    while (handle != nullptr && ::PeekNamedPipe(handle, nullptr, 0, nullptr, &waiting, nullptr) != 0
        && waiting > 0) {
        Completion completion;
        const auto size = static_cast<DWORD>(bytes.size());
        if (!hasBegun(::ReadFile(handle, bytes.data(), size, nullptr, &completion.operation))
            || completion.await(handle) == 0)
            return;
    }
}

void ServicePipe::open()
{
    if (handle != nullptr)
        return;
    const HANDLE pipe = ::CreateFileW(L"\\\\.\\pipe\\tarnPipe", GENERIC_READ | GENERIC_WRITE, 0, nullptr,
        OPEN_EXISTING, FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
    if (pipe != INVALID_HANDLE_VALUE)
        handle = pipe;
}

void ServicePipe::close()
{
    if (handle != nullptr)
        ::CloseHandle(handle);
    handle = nullptr;
}

} // namespace tarnSimulator
