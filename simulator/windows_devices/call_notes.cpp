#include "simulator/windows_devices/call_notes.h"

#include "simulator/windows_devices/machine_of_host.h"

#include <map>
#include <mutex>

namespace tarnSimulator {

namespace {

std::mutex mutex;

std::map<HANDLE, std::string> &openHandles()
{
    static std::map<HANDLE, std::string> handles;
    return handles;
}

} // namespace

void noteCall(const std::string &line)
{
    const std::scoped_lock lock(mutex);
    const HANDLE file = CreateFileW((folderOfHost() / L"calls.txt").wstring().c_str(), FILE_APPEND_DATA,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    const std::string text = line + '\n';
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
}

void noteOpened(HANDLE handle, const char *kind)
{
    noteCall(std::string("opened ") + kind);
    const std::scoped_lock lock(mutex);
    openHandles()[handle] = kind;
}

void noteClosed(HANDLE handle)
{
    std::string kind;
    {
        const std::scoped_lock lock(mutex);
        const auto known = openHandles().extract(handle);
        if (known.empty())
            return;
        kind = known.mapped();
    }
    noteCall("closed " + kind);
}

bool isOpen(HANDLE handle, const char *kind)
{
    const std::scoped_lock lock(mutex);
    const auto known = openHandles().find(handle);
    return known != openHandles().end() && known->second == kind;
}

std::string utf8(const wchar_t *text)
{
    if (text == nullptr)
        return "-";
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr); // with the zero
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), size, nullptr, nullptr);
    narrow.resize(narrow.size() - 1);
    return narrow;
}

} // namespace tarnSimulator
