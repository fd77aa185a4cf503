// Reports session 0, which Wine does not have, to the program that has loaded this library. The calls with
// which it starts a program for the user fail when the simulated computer has such a fault, and when their
// arguments are not those that a service needs to reach the user's desktop. Other calls go to the
// system's own functions.
#include "simulator/computer_control.h"
#include "simulator/windows_devices/call_notes.h"
#include "simulator/windows_devices/detours.h"
#include "simulator/windows_devices/machine_of_host.h"

#include <windows.h>

#include <cwchar>
#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>
#include <wtsapi32.h>

namespace {

using namespace tarnSimulator;

constexpr DWORD noSession = 0xFFFFFFFF;
constexpr DWORD allTokenAccess = 0xF01FF;
constexpr DWORD newConsole = 0x10;
constexpr DWORD startupBytes = 104;
constexpr std::size_t longestCommandLine = 260; // wide characters, with the final zero

// Kinds of handles that the service must close.
constexpr char userTokenKind[] = "user token";
constexpr char tokenCopyKind[] = "token copy";
constexpr char processKind[] = "process";
constexpr char threadKind[] = "thread";

bool isOn(Fault fault)
{
    MachineState *machine = machineOfHost();
    return machine != nullptr && FaultPanel(*machine).isOn(fault);
}

BOOL refuse()
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

bool isServiceSession()
{
    MachineState *machine = machineOfHost();
    return machine != nullptr && Desktop(*machine).isServiceSession();
}

// True when nothing but the size and the user's desktop is set.
bool isForDesktopOfUser(const STARTUPINFOW &startup)
{
    return startup.cb == startupBytes && startup.lpDesktop != nullptr
        && std::wcscmp(startup.lpDesktop, L"winsta0\\default") == 0 && startup.lpReserved == nullptr
        && startup.lpTitle == nullptr && startup.dwFlags == 0 && startup.wShowWindow == 0
        && startup.cbReserved2 == 0 && startup.lpReserved2 == nullptr && startup.hStdInput == nullptr
        && startup.hStdOutput == nullptr && startup.hStdError == nullptr;
}

// "C:/folder./TarnServiceGui/TarnServiceGui.exe" --switch
bool isCommandOfGui(const wchar_t *line)
{
    constexpr wchar_t endOfProgram[] = L"./TarnServiceGui/TarnServiceGui.exe\" --";
    const wchar_t *end = line == nullptr ? nullptr : std::wcsstr(line, endOfProgram);
    return end != nullptr && line[0] == L'"' && std::wcslen(line) < longestCommandLine
        && std::wcschr(end + std::size(endOfProgram) - 1, L' ') == nullptr;
}

BOOL WINAPI sessionOfProcess(DWORD process, DWORD *session)
{
    if (isServiceSession()) {
        *session = 0;
        return TRUE;
    }
    return ProcessIdToSessionId(process, session);
}

DWORD WINAPI consoleSession()
{
    return isOn(Fault::NoConsoleSession) ? noSession : WTSGetActiveConsoleSessionId();
}

BOOL WINAPI userToken(ULONG session, PHANDLE token)
{
    const bool isConsole = session == WTSGetActiveConsoleSessionId();
    if (isOn(Fault::NoUserToken) || !isConsole || !WTSQueryUserToken(session, token))
        return refuse();
    noteOpened(*token, userTokenKind);
    return TRUE;
}

BOOL WINAPI tokenCopy(HANDLE existing, DWORD access, LPSECURITY_ATTRIBUTES attributes,
    SECURITY_IMPERSONATION_LEVEL level, TOKEN_TYPE type, PHANDLE token)
{
    const bool isAsRequired = access == allTokenAccess && attributes == nullptr
        && level == SecurityIdentification && type == TokenPrimary;
    if (isOn(Fault::NoTokenCopy) || !isAsRequired || !isOpen(existing, userTokenKind)
        || !DuplicateTokenEx(existing, access, attributes, level, type, token)) {
        return refuse();
    }
    noteOpened(*token, tokenCopyKind);
    return TRUE;
}

BOOL WINAPI processAsUser(HANDLE token, LPCWSTR application, LPWSTR commandLine,
    LPSECURITY_ATTRIBUTES processAttributes, LPSECURITY_ATTRIBUTES threadAttributes, BOOL inherit,
    DWORD flags, LPVOID environment, LPCWSTR directory, LPSTARTUPINFOW startup,
    LPPROCESS_INFORMATION information)
{
    noteCall("CreateProcessAsUser " + utf8(commandLine));
    const bool isAsRequired = isOpen(token, tokenCopyKind) && application == nullptr
        && isCommandOfGui(commandLine) && processAttributes == nullptr && threadAttributes == nullptr
        && inherit == FALSE && flags == newConsole && environment == nullptr && directory == nullptr
        && startup != nullptr && isForDesktopOfUser(*startup);
    if (isOn(Fault::NoGuiProcess) || !isAsRequired
        || !CreateProcessAsUserW(token, application, commandLine, processAttributes, threadAttributes,
            inherit, flags, environment, directory, startup, information)) {
        return refuse();
    }
    noteOpened(information->hProcess, processKind);
    noteOpened(information->hThread, threadKind);
    return TRUE;
}

// Refuses a time limit, because the user may take any time to answer.
DWORD WINAPI waitForObject(HANDLE object, DWORD timeoutMs)
{
    if (isOpen(object, processKind) && timeoutMs != INFINITE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    return WaitForSingleObject(object, timeoutMs);
}

BOOL WINAPI closeHandle(HANDLE handle)
{
    noteClosed(handle);
    return CloseHandle(handle);
}

BOOL WINAPI exitCode(HANDLE process, LPDWORD code)
{
    return isOn(Fault::NoGuiExitCode) ? refuse() : GetExitCodeProcess(process, code);
}

// The user of the simulated computer has a download folder beside the service. A call without the user's
// token is refused, because it would ask for the system account's folder.
HRESULT WINAPI knownFolder(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR *path)
{
    if (!isServiceSession())
        return SHGetKnownFolderPath(folder, flags, token, path);
    *path = nullptr;
    if (!IsEqualGUID(folder, FOLDERID_Downloads) || flags != 0 || token == nullptr)
        return E_INVALIDARG;
    const std::wstring downloads = (folderOfHost() / L"console_user" / L"Downloads").wstring();
    *path = static_cast<PWSTR>(CoTaskMemAlloc((downloads.size() + 1) * sizeof(wchar_t)));
    if (*path == nullptr)
        return E_OUTOFMEMORY;
    std::wmemcpy(*path, downloads.c_str(), downloads.size() + 1);
    return S_OK;
}

} // namespace

namespace tarnSimulator {

std::span<const Detour> sessionDetours()
{
    static const Detour rows[] = {
        {"ProcessIdToSessionId", reinterpret_cast<void *>(sessionOfProcess)},
        {"WTSGetActiveConsoleSessionId", reinterpret_cast<void *>(consoleSession)},
        {"WTSQueryUserToken", reinterpret_cast<void *>(userToken)},
        {"DuplicateTokenEx", reinterpret_cast<void *>(tokenCopy)},
        {"CreateProcessAsUserW", reinterpret_cast<void *>(processAsUser)},
        {"WaitForSingleObject", reinterpret_cast<void *>(waitForObject)},
        {"GetExitCodeProcess", reinterpret_cast<void *>(exitCode)},
        {"CloseHandle", reinterpret_cast<void *>(closeHandle)},
        {"SHGetKnownFolderPath", reinterpret_cast<void *>(knownFolder)},
    };
    return rows;
}

} // namespace tarnSimulator
