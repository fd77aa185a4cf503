#pragma once

#include <windows.h>
#include <winsvc.h>

namespace tarnPlatform {

// The service-control functions of the system, looked up by name at run time.
struct ServiceFunctions
{
    decltype(&OpenSCManagerW) openManager = nullptr;
    decltype(&OpenServiceW) openService = nullptr;
    decltype(&CreateServiceW) createService = nullptr;
    decltype(&DeleteService) deleteService = nullptr;
    decltype(&CloseServiceHandle) closeHandle = nullptr;
    decltype(&StartServiceW) startService = nullptr;
    decltype(&ControlService) controlService = nullptr;
    decltype(&QueryServiceStatus) queryStatus = nullptr;
    decltype(&QueryServiceConfigW) queryConfig = nullptr;
    decltype(&QueryServiceConfig2W) queryConfig2 = nullptr;
    decltype(&ChangeServiceConfig2W) changeConfig2 = nullptr;
    decltype(&StartServiceCtrlDispatcherW) startDispatcher = nullptr;
    decltype(&RegisterServiceCtrlHandlerW) registerHandler = nullptr;
    decltype(&SetServiceStatus) setStatus = nullptr;
    decltype(&RegisterEventSourceW) registerEventSource = nullptr;
    decltype(&ReportEventW) reportEvent = nullptr;
    decltype(&DeregisterEventSource) deregisterEventSource = nullptr;

    // Null when the system lacks one of them; the last error says why.
    static const ServiceFunctions *ofSystem();
};

} // namespace tarnPlatform
