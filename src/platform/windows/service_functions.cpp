#include "platform/windows/service_functions.h"

#include <optional>

namespace tarnPlatform {
namespace {

template <typename Function> bool lookUp(HMODULE library, const char *name, Function &function)
{
    // By way of an object pointer, because the compiler warns of a direct conversion.
    function = reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(library, name)));
    return function != nullptr;
}

std::optional<ServiceFunctions> lookUpAll()
{
    // Kept until the process ends.
    const HMODULE library = LoadLibraryExW(L"advapi32", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    ServiceFunctions functions;
    const bool complete = library && lookUp(library, "OpenSCManagerW", functions.openManager)
        && lookUp(library, "OpenServiceW", functions.openService)
        && lookUp(library, "CreateServiceW", functions.createService)
        && lookUp(library, "DeleteService", functions.deleteService)
        && lookUp(library, "CloseServiceHandle", functions.closeHandle)
        && lookUp(library, "StartServiceW", functions.startService)
        && lookUp(library, "ControlService", functions.controlService)
        && lookUp(library, "QueryServiceStatus", functions.queryStatus)
        && lookUp(library, "QueryServiceConfigW", functions.queryConfig)
        && lookUp(library, "QueryServiceConfig2W", functions.queryConfig2)
        && lookUp(library, "ChangeServiceConfig2W", functions.changeConfig2)
        && lookUp(library, "StartServiceCtrlDispatcherW", functions.startDispatcher)
        && lookUp(library, "RegisterServiceCtrlHandlerW", functions.registerHandler)
        && lookUp(library, "SetServiceStatus", functions.setStatus)
        && lookUp(library, "RegisterEventSourceW", functions.registerEventSource)
        && lookUp(library, "ReportEventW", functions.reportEvent)
        && lookUp(library, "DeregisterEventSource", functions.deregisterEventSource);
    if (!complete)
        return std::nullopt;
    return functions;
}

} // namespace

const ServiceFunctions *ServiceFunctions::ofSystem()
{
    static const std::optional<ServiceFunctions> functions = lookUpAll();
    return functions ? &*functions : nullptr;
}

} // namespace tarnPlatform
