#include "error_output.h"

#include <windows.h>

#include <string>

namespace tarnGui {

namespace {

HANDLE errorHandle()
{
    const HANDLE inherited = GetStdHandle(STD_ERROR_HANDLE);
    if (inherited && inherited != INVALID_HANDLE_VALUE)
        return inherited;
    return AttachConsole(ATTACH_PARENT_PROCESS) ? GetStdHandle(STD_ERROR_HANDLE) : nullptr;
}

} // namespace

void writeError(std::wstring_view text)
{
    const HANDLE output = errorHandle();
    if (!output || output == INVALID_HANDLE_VALUE) {
        return; // There is no console to write to.
    }
    std::string bytes;
    for (const wchar_t letter : text)
        bytes += static_cast<char>(letter);
    DWORD written = 0;
    WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

} // namespace tarnGui
