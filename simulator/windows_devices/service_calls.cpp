// Notes the program's reports to the system's service manager and the event log, of which Wine keeps nothing
// that could be read back. The program gets these functions from GetProcAddress(), which is redirected to
// return the ones here; each one then calls the system's.
#include "simulator/windows_devices/call_notes.h"
#include "simulator/windows_devices/detours.h"

#include <windows.h>
#include <winsvc.h>

#include <cstring>

namespace {

using namespace tarnSimulator;

std::string number(DWORD value)
{
    return ' ' + std::to_string(value);
}

HANDLE WINAPI registerSource(LPCWSTR server, LPCWSTR source)
{
    noteCall("RegisterEventSource " + utf8(source));
    return RegisterEventSourceW(server, source);
}

BOOL WINAPI report(HANDLE log, WORD type, WORD category, DWORD event, PSID user, WORD texts, DWORD bytes,
    LPCWSTR *text, LPVOID data)
{
    std::string line =
        "ReportEvent type" + number(type) + " category" + number(category) + " event" + number(event);
    for (WORD i = 0; i < texts; ++i)
        line += " \"" + utf8(text[i]) + '"';
    noteCall(line);
    return ReportEventW(log, type, category, event, user, texts, bytes, text, data);
}

BOOL WINAPI deregisterSource(HANDLE log)
{
    noteCall("DeregisterEventSource");
    return DeregisterEventSource(log);
}

SC_HANDLE WINAPI create(SC_HANDLE manager, LPCWSTR name, LPCWSTR shownName, DWORD access, DWORD type,
    DWORD start, DWORD errorControl, LPCWSTR program, LPCWSTR group, LPDWORD tag, LPCWSTR dependencies,
    LPCWSTR account, LPCWSTR password)
{
    noteCall("CreateService account " + utf8(account) + " password " + utf8(password));
    return CreateServiceW(manager, name, shownName, access, type, start, errorControl, program, group, tag,
        dependencies, account, password);
}

BOOL WINAPI control(SC_HANDLE service, DWORD code, LPSERVICE_STATUS status)
{
    noteCall("ControlService" + number(code));
    return ControlService(service, code, status);
}

BOOL WINAPI setStatus(SERVICE_STATUS_HANDLE service, LPSERVICE_STATUS status)
{
    noteCall("SetServiceStatus state" + number(status->dwCurrentState) + " checkpoint"
        + number(status->dwCheckPoint) + " hint" + number(status->dwWaitHint));
    return SetServiceStatus(service, status);
}

const Detour noted[] = {
    {"RegisterEventSourceW", reinterpret_cast<void *>(registerSource)},
    {"ReportEventW", reinterpret_cast<void *>(report)},
    {"DeregisterEventSource", reinterpret_cast<void *>(deregisterSource)},
    {"CreateServiceW", reinterpret_cast<void *>(create)},
    {"ControlService", reinterpret_cast<void *>(control)},
    {"SetServiceStatus", reinterpret_cast<void *>(setStatus)},
};

FARPROC WINAPI lookUp(HMODULE library, LPCSTR name)
{
    const FARPROC found = GetProcAddress(library, name);
    const bool isOrdinal = HIWORD(reinterpret_cast<ULONGLONG>(name)) == 0;
    for (const Detour &row : noted) {
        if (found != nullptr && !isOrdinal && std::strcmp(row.function, name) == 0)
            return reinterpret_cast<FARPROC>(row.replacement);
    }
    return found;
}

} // namespace

namespace tarnSimulator {

std::span<const Detour> serviceDetours()
{
    static const Detour rows[] = {{"GetProcAddress", reinterpret_cast<void *>(lookUp)}};
    return rows;
}

} // namespace tarnSimulator
