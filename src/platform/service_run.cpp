#include "platform/service_run.h"

#include "platform/end_budget.h"
#include "platform/service_manager.h"

#include <QCoreApplication>

namespace tarnPlatform {
namespace {

using namespace std::chrono_literals;

constexpr auto startHint = 10000ms;
constexpr auto pauseHint = 3000ms;

bool isPending(ServiceState state)
{
    return state != ServiceState::Stopped && state != ServiceState::Running && state != ServiceState::Paused;
}

std::chrono::milliseconds waitHint(ServiceState state)
{
    switch (state) {
    case ServiceState::StartPending:
        return startHint;
    case ServiceState::StopPending:
        return endBudget::promised;
    case ServiceState::PausePending:
    case ServiceState::ContinuePending:
        return pauseHint;
    default:
        return 0ms;
    }
}

// A service that starts or stops takes no controls.
bool takesControls(ServiceState state)
{
    return state != ServiceState::StartPending && state != ServiceState::StopPending
        && state != ServiceState::Stopped;
}

} // namespace

// A stop stays pending after stopService(), until reportStopped().
const ServiceRun::Action ServiceRun::actions[] = {
    {ControlStop, AcceptsStop, ServiceState::StopPending, ServiceState::StopPending,
        &ServiceHost::stopService},
    {ControlShutdown, AcceptsShutdown, ServiceState::StopPending, ServiceState::StopPending,
        &ServiceHost::stopService},
    {ControlPause, AcceptsPauseAndContinue, ServiceState::PausePending, ServiceState::Paused,
        &ServiceHost::pauseService},
    {ControlContinue, AcceptsPauseAndContinue, ServiceState::ContinuePending, ServiceState::Running,
        &ServiceHost::resumeService},
};

ServiceRun::ServiceRun(ServiceHost &service, quint32 accepted, Report reportToManager)
    : host(service)
    , acceptedControls(accepted)
    , report(std::move(reportToManager))
{ }

void ServiceRun::start()
{
    {
        const std::scoped_lock lock(mutex);
        enter(ServiceState::StartPending);
    }
    host.startService();
    started = true;
    const std::scoped_lock lock(mutex);
    enter(ServiceState::Running);
}

int ServiceRun::serve()
{
    const int exitCode = host.runEventLoop();
    const std::scoped_lock lock(mutex);
    if (status.state != ServiceState::Stopped)
        enter(ServiceState::StopPending);
    return exitCode;
}

void ServiceRun::control(quint32 code)
{
    const std::scoped_lock lock(mutex);
    const Action *action = actionFor(code);
    if (action) {
        enter(action->pending);
        perform(*action);
        return;
    }
    if (takesControls(status.state) && code >= FirstUserControl && code <= LastUserControl) {
        QMetaObject::invokeMethod(
            qApp,
            [this, command = static_cast<int>(code - FirstUserControl)] {
                host.processServiceCommand(command);
            },
            Qt::QueuedConnection);
    }
    reportStatus(); // the manager expects an answer to every control
}

void ServiceRun::reportStopped(int exitCode)
{
    const std::scoped_lock lock(mutex);
    if (status.state == ServiceState::Stopped)
        return;
    status.exitCode = exitCode;
    enter(ServiceState::Stopped);
    changed.notify_all();
}

bool ServiceRun::waitUntilStopped()
{
    std::unique_lock lock(mutex);
    const auto isStopped = [this] {
        return status.state == ServiceState::Stopped;
    };
    changed.wait(lock, [&] { return isStopped() || stopDeadline; });
    return isStopped() || changed.wait_until(lock, *stopDeadline, isStopped);
}

// Null for a control that has no effect now. The caller holds the lock.
const ServiceRun::Action *ServiceRun::actionFor(quint32 code) const
{
    if (!takesControls(status.state))
        return nullptr;
    for (const Action &action : actions) {
        if (action.control == code && (acceptedControls & action.acceptedAs) != 0)
            return &action;
    }
    return nullptr;
}

// Performs the operation on the application thread. Controls may follow each other faster than they are
// performed: only the last one leads to its final state.
void ServiceRun::perform(const Action &action)
{
    QMetaObject::invokeMethod(
        qApp,
        [this, &action] {
            (host.*action.operation)();
            const std::scoped_lock lock(mutex);
            if (status.state == action.pending)
                enter(action.settled);
        },
        Qt::QueuedConnection);
}

// The caller holds the lock.
void ServiceRun::enter(ServiceState state)
{
    const bool again = state == status.state;
    status.state = state;
    if (state == ServiceState::StopPending && !stopDeadline) {
        stopDeadline = std::chrono::steady_clock::now() + endBudget::watchdog;
        changed.notify_all();
    }
    status.checkPoint = isPending(state) ? (again ? status.checkPoint + 1 : 1) : 0;
    status.waitHint = waitHint(state);
    status.acceptedControls = takesControls(state) ? acceptedControls : quint32(AcceptsNothing);
    reportStatus();
}

void ServiceRun::reportStatus()
{
    report(status);
}

} // namespace tarnPlatform
