#pragma once

#include "platform/windows/service_functions.h"

#include <utility>

namespace tarnPlatform {

// A handle of the service manager or of a service. Closing it leaves the last error as it was, so that a
// caller that reports a failure still finds its reason.
class ServiceHandle
{
public:
    ServiceHandle() = default;
    ServiceHandle(const ServiceFunctions &serviceFunctions, SC_HANDLE opened)
        : functions(&serviceFunctions)
        , handle(opened)
    { }
    ServiceHandle(ServiceHandle &&other) noexcept
        : functions(other.functions)
        , handle(std::exchange(other.handle, nullptr))
    { }
    ServiceHandle(const ServiceHandle &) = delete;
    ServiceHandle &operator=(const ServiceHandle &) = delete;
    ServiceHandle &operator=(ServiceHandle &&) = delete;
    ~ServiceHandle()
    {
        if (!handle)
            return;
        const DWORD error = GetLastError();
        functions->closeHandle(handle);
        SetLastError(error);
    }

    explicit operator bool() const { return handle != nullptr; }
    [[nodiscard]] SC_HANDLE get() const { return handle; }

private:
    const ServiceFunctions *functions = nullptr;
    SC_HANDLE handle = nullptr;
};

} // namespace tarnPlatform
