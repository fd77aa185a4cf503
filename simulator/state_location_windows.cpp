#include "simulator/state_location.h"

#include <string>
#include <windows.h>

namespace tarnSimulator {

namespace {

constexpr DWORD longestPath = 32768; // characters, with the final zero

} // namespace

std::optional<std::filesystem::path> stateFileFromEnvironment()
{
    std::wstring value(longestPath, L'\0');
    const std::string name(stateFileVariable);
    const std::wstring wideName(name.begin(), name.end());
    const DWORD length = ::GetEnvironmentVariableW(wideName.c_str(), value.data(), longestPath);
    if (length == 0 || length >= longestPath)
        return std::nullopt;
    value.resize(length);
    return std::filesystem::path(value);
}

std::filesystem::path moduleFile()
{
    HMODULE module = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (::GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&moduleFile), &module) == 0)
        return {};
    std::wstring file(longestPath, L'\0');
    const DWORD length = ::GetModuleFileNameW(module, file.data(), longestPath);
    file.resize(length);
    return std::filesystem::path(file);
}

} // namespace tarnSimulator
