#pragma once

#include <windows.h>

#include <utility>

namespace tarnPlatform {

// Closes a kernel handle. Null and INVALID_HANDLE_VALUE both stand for none: the calls differ in which they
// use.
class UniqueHandle
{
public:
    UniqueHandle() = default;
    explicit UniqueHandle(HANDLE owned)
        : handle(owned)
    { }
    ~UniqueHandle()
    {
        if (*this)
            CloseHandle(handle);
    }
    UniqueHandle(const UniqueHandle &) = delete;
    UniqueHandle &operator=(const UniqueHandle &) = delete;

    [[nodiscard]] explicit operator bool() const { return handle && handle != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return handle; }
    // Belongs to the caller from now on.
    [[nodiscard]] HANDLE release() { return std::exchange(handle, nullptr); }
    // For calls that fill a handle in; only while there is none.
    [[nodiscard]] HANDLE *receive() { return &handle; }

private:
    HANDLE handle = nullptr;
};

} // namespace tarnPlatform
