// Lets the program that has loaded this library believe that it runs in session 0, which Wine has not, and
// lets the calls fail with which it starts a program for the user. What the simulated computer does not say
// goes to the system's own functions.
#include "simulator/computer_control.h"
#include "simulator/windows_devices/machine_of_host.h"

#include <windows.h>

#include <cstring>
#include <wtsapi32.h>

namespace {

using namespace tarnSimulator;

constexpr DWORD NO_SESSION = 0xFFFFFFFF;

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

BOOL WINAPI sessionOfProcess(DWORD process, DWORD *session)
{
    MachineState *machine = machineOfHost();
    if (machine != nullptr && Desktop(*machine).isServiceSession()) {
        *session = 0;
        return TRUE;
    }
    return ProcessIdToSessionId(process, session);
}

DWORD WINAPI consoleSession()
{
    return isOn(Fault::NoConsoleSession) ? NO_SESSION : WTSGetActiveConsoleSessionId();
}

BOOL WINAPI userToken(ULONG session, PHANDLE token)
{
    return isOn(Fault::NoUserToken) ? refuse() : WTSQueryUserToken(session, token);
}

BOOL WINAPI tokenCopy(HANDLE existing, DWORD access, LPSECURITY_ATTRIBUTES attributes,
    SECURITY_IMPERSONATION_LEVEL level, TOKEN_TYPE type, PHANDLE token)
{
    return isOn(Fault::NoTokenCopy) ? refuse()
                                    : DuplicateTokenEx(existing, access, attributes, level, type, token);
}

BOOL WINAPI processAsUser(HANDLE token, LPCWSTR application, LPWSTR commandLine,
    LPSECURITY_ATTRIBUTES processAttributes, LPSECURITY_ATTRIBUTES threadAttributes, BOOL inherit,
    DWORD flags, LPVOID environment, LPCWSTR directory, LPSTARTUPINFOW startup,
    LPPROCESS_INFORMATION information)
{
    if (isOn(Fault::NoGuiProcess)) {
        return refuse();
    }
    return CreateProcessAsUserW(token, application, commandLine, processAttributes, threadAttributes, inherit,
        flags, environment, directory, startup, information);
}

BOOL WINAPI exitCode(HANDLE process, LPDWORD code)
{
    return isOn(Fault::NoGuiExitCode) ? refuse() : GetExitCodeProcess(process, code);
}

struct Detour
{
    const char *function;
    void *replacement;
};

const Detour DETOURS[] = {
    {"ProcessIdToSessionId", reinterpret_cast<void *>(sessionOfProcess)},
    {"WTSGetActiveConsoleSessionId", reinterpret_cast<void *>(consoleSession)},
    {"WTSQueryUserToken", reinterpret_cast<void *>(userToken)},
    {"DuplicateTokenEx", reinterpret_cast<void *>(tokenCopy)},
    {"CreateProcessAsUserW", reinterpret_cast<void *>(processAsUser)},
    {"GetExitCodeProcess", reinterpret_cast<void *>(exitCode)},
};

template <typename Type> Type *at(BYTE *base, ULONGLONG offset)
{
    return reinterpret_cast<Type *>(base + offset);
}

void detour(ULONGLONG *entry, const char *function)
{
    for (const Detour &row : DETOURS) {
        if (std::strcmp(row.function, function) != 0) {
            continue;
        }
        DWORD before = 0;
        VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &before);
        *entry = reinterpret_cast<ULONGLONG>(row.replacement);
        VirtualProtect(entry, sizeof *entry, before, &before);
    }
}

// Only the program itself is led elsewhere; its libraries, and this one, keep calling the system.
void detourImportsOfProgram()
{
    auto *base = reinterpret_cast<BYTE *>(GetModuleHandleW(nullptr));
    const auto *dos = at<IMAGE_DOS_HEADER>(base, 0);
    const auto *headers = at<IMAGE_NT_HEADERS>(base, static_cast<ULONGLONG>(dos->e_lfanew));
    const auto &imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0) {
        return;
    }
    for (auto *library = at<IMAGE_IMPORT_DESCRIPTOR>(base, imports.VirtualAddress); library->FirstThunk != 0;
         ++library) {
        const auto *names = at<IMAGE_THUNK_DATA>(base, library->OriginalFirstThunk);
        auto *entries = at<IMAGE_THUNK_DATA>(base, library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++entries) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) {
                continue;
            }
            detour(&entries->u1.Function, at<IMAGE_IMPORT_BY_NAME>(base, names->u1.AddressOfData)->Name);
        }
    }
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH) {
        detourImportsOfProgram();
    }
    return TRUE;
}
