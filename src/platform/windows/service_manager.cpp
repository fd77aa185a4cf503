#include "platform/service_manager.h"

#include "platform/windows/service_dispatcher.h"
#include "platform/windows/service_functions.h"
#include "platform/windows/service_handle.h"
#include "platform/windows/wide_text.h"

#include <vector>

namespace tarnPlatform {
namespace {

constexpr DWORD longestPath = 32768; // characters

const wchar_t *optionalText(const std::optional<QString> &text)
{
    return text ? wideText(*text) : nullptr;
}

class WindowsServiceManager final : public ServiceManager
{
public:
    explicit WindowsServiceManager(const ServiceFunctions &serviceFunctions)
        : functions(serviceFunctions)
    { }

    QString programPath() override;
    bool isInstalled(const QString &name) override;
    bool isRunning(const QString &name) override;
    bool install(const ServiceRegistration &registration) override;
    bool uninstall(const QString &name) override;
    bool terminate(const QString &name) override;
    bool pause(const QString &name) override;
    bool resume(const QString &name) override;
    bool sendCommand(const QString &name, int code) override;
    bool runService(const QString &name, quint32 acceptedControls, ServiceHost &host, int *exitCode) override;
    void reportStopped(int exitCode) override;

private:
    // Both with the rights that the operation needs and no more; empty when refused.
    [[nodiscard]] ServiceHandle openManager(DWORD rights) const;
    [[nodiscard]] ServiceHandle openService(const QString &name, DWORD rights) const;
    [[nodiscard]] bool control(const QString &name, DWORD rights, DWORD code) const;

    const ServiceFunctions &functions;
};

QString WindowsServiceManager::programPath()
{
    std::vector<wchar_t> path(longestPath);
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), longestPath);
    return QString::fromWCharArray(path.data(), static_cast<qsizetype>(length));
}

bool WindowsServiceManager::isInstalled(const QString &name)
{
    return static_cast<bool>(openService(name, SERVICE_QUERY_STATUS));
}

bool WindowsServiceManager::isRunning(const QString &name)
{
    const ServiceHandle service = openService(name, SERVICE_QUERY_STATUS);
    SERVICE_STATUS status;
    return service && functions.queryStatus(service.get(), &status)
        && status.dwCurrentState != SERVICE_STOPPED;
}

bool WindowsServiceManager::install(const ServiceRegistration &registration)
{
    const ServiceHandle manager = openManager(SC_MANAGER_ALL_ACCESS);
    if (!manager)
        return false;
    const ServiceEntry entry = serviceEntry(registration);
    // The bare path is registered, as -install and -version print it. If it contains blanks, the system tries
    // each shorter path first, so quotes have to be added after the installation.
    const ServiceHandle service(functions,
        functions.createService(manager.get(), wideText(registration.name), wideText(registration.name),
            SERVICE_ALL_ACCESS, entry.serviceType, entry.startType, entry.errorControl,
            wideText(programPath()), nullptr, nullptr, nullptr, optionalText(entry.account),
            optionalText(entry.password)));
    if (!service)
        return false;
    if (!registration.description.isEmpty()) {
        std::wstring text(wideText(registration.description));
        SERVICE_DESCRIPTIONW description = {text.data()};
        functions.changeConfig2(service.get(), SERVICE_CONFIG_DESCRIPTION, &description);
    }
    return true;
}

bool WindowsServiceManager::uninstall(const QString &name)
{
    const ServiceHandle service = openService(name, DELETE);
    return service && functions.deleteService(service.get());
}

bool WindowsServiceManager::terminate(const QString &name)
{
    return control(name, SERVICE_STOP, SERVICE_CONTROL_STOP);
}

bool WindowsServiceManager::pause(const QString &name)
{
    return control(name, SERVICE_PAUSE_CONTINUE, SERVICE_CONTROL_PAUSE);
}

bool WindowsServiceManager::resume(const QString &name)
{
    return control(name, SERVICE_PAUSE_CONTINUE, SERVICE_CONTROL_CONTINUE);
}

bool WindowsServiceManager::sendCommand(const QString &name, int code)
{
    return isUserCommand(code) && control(name, SERVICE_USER_DEFINED_CONTROL, userControl(code));
}

bool WindowsServiceManager::runService(
    const QString &name, quint32 acceptedControls, ServiceHost &host, int *exitCode)
{
    return runUnderServiceManager(functions, name, acceptedControls, host, exitCode);
}

void WindowsServiceManager::reportStopped(int exitCode)
{
    reportServiceStopped(exitCode);
}

ServiceHandle WindowsServiceManager::openManager(DWORD rights) const
{
    return {functions, functions.openManager(nullptr, nullptr, rights)};
}

ServiceHandle WindowsServiceManager::openService(const QString &name, DWORD rights) const
{
    const ServiceHandle manager = openManager(SC_MANAGER_CONNECT);
    if (!manager)
        return {};
    return {functions, functions.openService(manager.get(), wideText(name), rights)};
}

bool WindowsServiceManager::control(const QString &name, DWORD rights, DWORD code) const
{
    const ServiceHandle service = openService(name, rights);
    SERVICE_STATUS status;
    return service && functions.controlService(service.get(), code, &status);
}

} // namespace

ServiceManager &ServiceManager::system()
{
    const ServiceFunctions *functions = ServiceFunctions::ofSystem();
    if (!functions)
        qFatal("advapi32 lacks the functions to control services"); // every Windows has them
    static WindowsServiceManager manager(*functions);
    return manager;
}

} // namespace tarnPlatform
