#include "simulator/shared_mapping.h"

#include <system_error>
#include <windows.h>

namespace tarnSimulator {

namespace {

class Handle
{
public:
    explicit Handle(HANDLE opened)
        : handle(opened)
    { }

    ~Handle()
    {
        if (isOpen())
            ::CloseHandle(handle);
    }

    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    [[nodiscard]] bool isOpen() const { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return handle; }

private:
    HANDLE handle;
};

std::string lastError()
{
    return std::system_category().message(static_cast<int>(::GetLastError()));
}

} // namespace

// The view keeps the file open after both handles are closed.
std::optional<SharedMapping> SharedMapping::open(const std::filesystem::path &file, std::string &error)
{
    const Handle opened(::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
        nullptr));
    LARGE_INTEGER fileLength = {};
    if (!opened.isOpen() || ::GetFileSizeEx(opened.get(), &fileLength) == 0) {
        error = lastError();
        return std::nullopt;
    }
    if (fileLength.QuadPart == 0)
        return SharedMapping(nullptr, 0);
    const Handle mapping(::CreateFileMappingW(opened.get(), nullptr, PAGE_READWRITE, 0, 0, nullptr));
    void *view =
        mapping.isOpen() ? ::MapViewOfFile(mapping.get(), FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, 0) : nullptr;
    if (view == nullptr) {
        error = lastError();
        return std::nullopt;
    }
    return SharedMapping(view, static_cast<std::size_t>(fileLength.QuadPart));
}

SharedMapping::~SharedMapping()
{
    if (start != nullptr)
        ::UnmapViewOfFile(start);
}

// Without the replace flag the move fails when the name is taken.
bool renameUnlessThere(
    const std::filesystem::path &file, const std::filesystem::path &finalName, std::string &error)
{
    if (::MoveFileExW(file.c_str(), finalName.c_str(), MOVEFILE_WRITE_THROUGH) != 0)
        return true;
    if (const DWORD reason = ::GetLastError();
        reason == ERROR_ALREADY_EXISTS || reason == ERROR_FILE_EXISTS) {
        return true;
    }
    error = lastError();
    return false;
}

} // namespace tarnSimulator
