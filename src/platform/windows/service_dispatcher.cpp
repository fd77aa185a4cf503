#include "platform/windows/service_dispatcher.h"

#include "platform/message_tap.h"
#include "platform/process_end.h"
#include "platform/service_run.h"
#include "platform/windows/event_log.h"
#include "platform/windows/wide_text.h"

#include <atomic>
#include <cstdlib>
#include <future>
#include <thread>

namespace tarnPlatform {
namespace {

// The service of this process and its connection to the manager.
class Dispatcher
{
public:
    Dispatcher(const ServiceFunctions &serviceFunctions, const QString &serviceName, quint32 acceptedControls,
        ServiceHost &host)
        : functions(serviceFunctions)
        , name(serviceName)
        , run(host, acceptedControls, [this](const ServiceStatus &status) { report(status); })
    { }

    // Runs on the handler thread: returns when the service has stopped, or at once if there is no manager.
    void connectToManager();
    // Runs on the thread that the system makes for the service: registers the service and waits until it has
    // stopped.
    void serve();
    // The error for which the service does not run; 0 when it runs.
    [[nodiscard]] DWORD waitForConnection() { return connection.get_future().get(); }
    [[nodiscard]] bool isConnected() const { return statusHandle != nullptr; }

    const ServiceFunctions &functions;
    const QString name;
    ServiceRun run;

private:
    void report(const ServiceStatus &status);
    void noteConnection(DWORD error);

    std::atomic<SERVICE_STATUS_HANDLE> statusHandle {nullptr};
    std::promise<DWORD> connection;
    std::atomic<bool> connectionNoted {false};
};

// Global, because the system's callbacks carry no context. Never destroyed, because they may come until the
// very end.
Dispatcher *dispatcher = nullptr;

void WINAPI serviceMain(DWORD, LPWSTR *)
{
    dispatcher->serve();
}

void WINAPI handleControl(DWORD control)
{
    dispatcher->run.control(control);
}

void Dispatcher::connectToManager()
{
    std::wstring title(wideText(name));
    const SERVICE_TABLE_ENTRYW services[] = {{title.data(), serviceMain}, {nullptr, nullptr}};
    noteConnection(functions.startDispatcher(services) ? NO_ERROR : GetLastError());
}

void Dispatcher::serve()
{
    statusHandle = functions.registerHandler(wideText(name), handleControl);
    noteConnection(statusHandle ? NO_ERROR : GetLastError());
    if (!statusHandle || run.waitUntilStopped())
        return;
    // Something holds up even the end of the process; the program that stops the service must not wait for
    // it.
    run.reportStopped(EXIT_SUCCESS);
    exitAtOnce(EXIT_SUCCESS);
}

void Dispatcher::noteConnection(DWORD error)
{
    if (!connectionNoted.exchange(true))
        connection.set_value(error);
}

void Dispatcher::report(const ServiceStatus &status)
{
    SERVICE_STATUS told = {};
    told.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    told.dwCurrentState = static_cast<DWORD>(status.state);
    told.dwControlsAccepted = status.acceptedControls;
    told.dwWin32ExitCode = status.exitCode ? ERROR_SERVICE_SPECIFIC_ERROR : NO_ERROR;
    told.dwServiceSpecificExitCode = static_cast<DWORD>(status.exitCode);
    told.dwCheckPoint = status.checkPoint;
    told.dwWaitHint = static_cast<DWORD>(status.waitHint.count());
    functions.setStatus(statusHandle, &told);
}

} // namespace

bool runUnderServiceManager(const ServiceFunctions &functions, const QString &name, quint32 acceptedControls,
    ServiceHost &host, int *exitCode)
{
    dispatcher = new Dispatcher(functions, name, acceptedControls, host);
    std::thread([] { dispatcher->connectToManager(); }).detach();
    if (const DWORD error = dispatcher->waitForConnection()) {
        reportStartFailure(functions, name, qt_error_string(static_cast<int>(error)));
        return false;
    }
    // A fatal message ends the process, and is not visible for a service. Threads log until the process has
    // ended, so this is never destroyed.
    static auto *tap = new MessageTap([](QtMsgType type, const QString &message) {
        if (type != QtFatalMsg)
            return;
        const auto reportFailure = dispatcher->run.hasStarted() ? reportFatalEnd : reportStartFailure;
        reportFailure(dispatcher->functions, dispatcher->name, message);
        dispatcher->run.reportStopped(EXIT_FAILURE);
    });
    Q_UNUSED(tap)
    dispatcher->run.start();
    *exitCode = dispatcher->run.serve();
    return true;
}

void reportServiceStopped(int exitCode)
{
    if (dispatcher && dispatcher->isConnected())
        dispatcher->run.reportStopped(exitCode);
}

} // namespace tarnPlatform
