#include "service_entry_windows.h"

#include <QByteArray>

#include <windows.h>

#include <winsvc.h>

#include <algorithm>
#include <memory>
#include <type_traits>

namespace tarnctl {

namespace {

struct ServiceCloser
{
    void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using ServiceHandle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceCloser>;

ServiceEntry::Start startOf(DWORD type)
{
    switch (type) {
    case SERVICE_AUTO_START:
        return ServiceEntry::Start::Automatic;
    case SERVICE_DEMAND_START:
        return ServiceEntry::Start::OnDemand;
    case SERVICE_DISABLED:
        return ServiceEntry::Start::Disabled;
    default:
        return ServiceEntry::Start::Other;
    }
}

ServiceEntry::State stateOf(DWORD state)
{
    switch (state) {
    case SERVICE_STOPPED:
        return ServiceEntry::State::Stopped;
    case SERVICE_START_PENDING:
        return ServiceEntry::State::Starting;
    case SERVICE_STOP_PENDING:
        return ServiceEntry::State::Stopping;
    case SERVICE_RUNNING:
        return ServiceEntry::State::Running;
    case SERVICE_PAUSED:
        return ServiceEntry::State::Paused;
    default:
        return ServiceEntry::State::Other;
    }
}

// The structure with what it points to; empty when the manager does not tell.
QByteArray configuration(SC_HANDLE service)
{
    DWORD size = 0;
    QueryServiceConfigW(service, nullptr, 0, &size);
    QByteArray bytes(static_cast<qsizetype>(size), '\0');
    auto *config = reinterpret_cast<QUERY_SERVICE_CONFIGW *>(bytes.data());
    return size > 0 && QueryServiceConfigW(service, config, size, &size) ? bytes : QByteArray();
}

QByteArray configuration(SC_HANDLE service, DWORD level)
{
    DWORD size = 0;
    QueryServiceConfig2W(service, level, nullptr, 0, &size);
    QByteArray bytes(static_cast<qsizetype>(size), '\0');
    auto *place = reinterpret_cast<BYTE *>(bytes.data());
    return size > 0 && QueryServiceConfig2W(service, level, place, size, &size) ? bytes : QByteArray();
}

// Null without content.
template <typename Structure> const Structure *structureIn(const QByteArray &bytes)
{
    return bytes.isEmpty() ? nullptr : reinterpret_cast<const Structure *>(bytes.constData());
}

void readRecovery(SC_HANDLE service, ServiceEntry &entry)
{
    const QByteArray actions = configuration(service, SERVICE_CONFIG_FAILURE_ACTIONS);
    const QByteArray flag = configuration(service, SERVICE_CONFIG_FAILURE_ACTIONS_FLAG);
    addRecovery(entry, structureIn<SERVICE_FAILURE_ACTIONSW>(actions),
        structureIn<SERVICE_FAILURE_ACTIONS_FLAG>(flag));
}

void readState(SC_HANDLE service, ServiceEntry &entry)
{
    SERVICE_STATUS_PROCESS status = {};
    DWORD size = 0;
    if (!QueryServiceStatusEx(
            service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE *>(&status), sizeof status, &size))
        return;
    entry.state = stateOf(status.dwCurrentState);
    entry.processId = static_cast<qint64>(status.dwProcessId);
    entry.lastExitCode = status.dwWin32ExitCode == ERROR_SERVICE_SPECIFIC_ERROR
        ? status.dwServiceSpecificExitCode
        : status.dwWin32ExitCode;
    // Of a service that has not been started since the system was.
    if (status.dwWin32ExitCode == ERROR_SERVICE_NEVER_STARTED)
        entry.lastExitCode = 0;
}

} // namespace

void addRecovery(
    ServiceEntry &entry, const SERVICE_FAILURE_ACTIONSW *actions, const SERVICE_FAILURE_ACTIONS_FLAG *flag)
{
    if (actions != nullptr) {
        entry.restarts =
            static_cast<int>(std::count_if(actions->lpsaActions, actions->lpsaActions + actions->cActions,
                [](const SC_ACTION &action) { return action.Type == SC_ACTION_RESTART; }));
    }
    if (flag != nullptr)
        entry.restartsAfterFailedStop = flag->fFailureActionsOnNonCrashFailures != FALSE;
}

ServiceEntry readServiceEntry(const QString &name)
{
    ServiceEntry entry;
    entry.known = ServiceEntry::Known::Unreadable;
    const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (!manager)
        return entry;
    const ServiceHandle service(OpenServiceW(
        manager.get(), name.toStdWString().c_str(), SERVICE_QUERY_CONFIG | SERVICE_QUERY_STATUS));
    if (!service) {
        if (GetLastError() == ERROR_SERVICE_DOES_NOT_EXIST)
            entry.known = ServiceEntry::Known::No;
        return entry;
    }
    const QByteArray bytes = configuration(service.get());
    if (bytes.isEmpty())
        return entry;
    const auto *config = reinterpret_cast<const QUERY_SERVICE_CONFIGW *>(bytes.constData());
    entry.known = ServiceEntry::Known::Yes;
    entry.command = QString::fromWCharArray(config->lpBinaryPathName);
    entry.account = QString::fromWCharArray(config->lpServiceStartName);
    entry.start = startOf(config->dwStartType);
    readRecovery(service.get(), entry);
    readState(service.get(), entry);
    return entry;
}

} // namespace tarnctl
