#include "platform/service_run.h"

#include "platform/service_manager.h"

#include <QCoreApplication>

namespace tarnPlatform {
namespace {

using namespace std::chrono_literals;

// A stop takes 1.5 s when a thread is held up, 2.3 s when a step must not be left half done, else less; it is
// to be over after 3 s.
constexpr auto stopPatience = 2500ms;
constexpr auto stopHint = 3000ms;
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
        return stopHint;
    case ServiceState::PausePending:
    case ServiceState::ContinuePending:
        return pauseHint;
    default:
        return 0ms;
    }
}

// Nothing can be asked of a service that starts or stops.
bool takesControls(ServiceState state)
{
    return state != ServiceState::StartPending && state != ServiceState::StopPending
        && state != ServiceState::Stopped;
}

} // namespace

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
    const std::scoped_lock lock(mutex);
    enter(ServiceState::Running);
}

int ServiceRun::serve()
{
    const int exitCode = host.runEventLoop();
    const std::scoped_lock lock(mutex);
    enterStop();
    return exitCode;
}

void ServiceRun::control(quint32 code)
{
    const std::scoped_lock lock(mutex);
    const quint32 accepted = takesControls(status.state) ? acceptedControls : quint32(AcceptsNothing);
    if ((code == ControlStop && accepted & AcceptsStop)
        || (code == ControlShutdown && accepted & AcceptsShutdown)) {
        enterStop();
        perform(ServiceState::StopPending, &ServiceHost::stopService, std::nullopt);
    } else if (code == ControlPause && accepted & AcceptsPauseAndContinue) {
        enter(ServiceState::PausePending);
        perform(ServiceState::PausePending, &ServiceHost::pauseService, ServiceState::Paused);
    } else if (code == ControlContinue && accepted & AcceptsPauseAndContinue) {
        enter(ServiceState::ContinuePending);
        perform(ServiceState::ContinuePending, &ServiceHost::resumeService, ServiceState::Running);
    } else {
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

// The service's part, on the application thread. Controls may follow each other faster than it works: only
// the last one that was asked for leads to its final state.
void ServiceRun::perform(ServiceState pending, Operation operation, std::optional<ServiceState> settled)
{
    QMetaObject::invokeMethod(
        qApp,
        [this, pending, operation, settled] {
            (host.*operation)();
            const std::scoped_lock lock(mutex);
            if (status.state == pending)
                enter(settled.value_or(pending));
        },
        Qt::QueuedConnection);
}

// With the lock held, as the two below.
void ServiceRun::enter(ServiceState state)
{
    const bool again = state == status.state;
    status.state = state;
    status.checkPoint = isPending(state) ? (again ? status.checkPoint + 1 : 1) : 0;
    status.waitHint = waitHint(state);
    status.acceptedControls = takesControls(state) ? acceptedControls : quint32(AcceptsNothing);
    reportStatus();
}

void ServiceRun::enterStop()
{
    if (status.state == ServiceState::Stopped)
        return;
    if (!stopDeadline) {
        stopDeadline = std::chrono::steady_clock::now() + stopPatience;
        changed.notify_all();
    }
    enter(ServiceState::StopPending);
}

void ServiceRun::reportStatus()
{
    report(status);
}

} // namespace tarnPlatform
