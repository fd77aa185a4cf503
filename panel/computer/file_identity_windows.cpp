#include "panel/computer/file_identity.h"

#include <windows.h>

namespace tarnPanel {

std::optional<FileIdentity> identityOf(const std::filesystem::path &file)
{
    // No access rights are needed to ask, and nobody else is kept from the file meanwhile.
    const HANDLE handle =
        ::CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return std::nullopt;
    BY_HANDLE_FILE_INFORMATION facts = {};
    const bool isKnown = ::GetFileInformationByHandle(handle, &facts) != 0;
    ::CloseHandle(handle);
    if (!isKnown)
        return std::nullopt;
    const auto together = [](DWORD high, DWORD low) {
        return std::uint64_t {high} << 32 | low;
    };
    return FileIdentity {facts.dwVolumeSerialNumber, together(facts.nFileIndexHigh, facts.nFileIndexLow),
        together(facts.nFileSizeHigh, facts.nFileSizeLow)};
}

} // namespace tarnPanel
