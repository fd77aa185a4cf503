#pragma once

#include "platform/service_manager.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

namespace tarnPlatform {

class ServiceHost;

// As the system numbers them.
enum class ServiceState : quint32 {
    Stopped = 1,
    StartPending = 2,
    StopPending = 3,
    Running = 4,
    ContinuePending = 5,
    PausePending = 6,
    Paused = 7,
};

// A report to the service manager.
struct ServiceStatus
{
    ServiceState state = ServiceState::StartPending;
    quint32 acceptedControls = AcceptsNothing;
    quint32 checkPoint = 0; // counts the reports of one pending state, 0 in the others
    std::chrono::milliseconds waitHint {0}; // until the next report at the latest, in a pending state
    int exitCode = 0;

    bool operator==(const ServiceStatus &) const = default;
};

// One run of a service under its manager: passes the manager's controls to the application thread in their
// order, and reports the resulting states to the manager.
class ServiceRun
{
public:
    using Report = std::function<void(const ServiceStatus &)>;

    // Controls (AcceptedControl) that are not accepted have no effect. Reports come from any thread, one at a
    // time and in the order of the states.
    ServiceRun(ServiceHost &host, quint32 acceptedControls, Report report);

    // On the application thread, one after the other: start() starts the service, serve() runs its event loop
    // and returns the exit code.
    void start();
    [[nodiscard]] int serve();
    // From the return of start() on; any thread.
    [[nodiscard]] bool hasStarted() const { return started; }
    // A control (ServiceControl) from the manager, on any thread; returns without waiting for its effect.
    void control(quint32 code);
    // The service has stopped and released everything. Only the first report counts.
    void reportStopped(int exitCode);

    // Waits for the report that the service has stopped. False when a stop has gone on for longer than
    // endBudget::watchdog.
    [[nodiscard]] bool waitUntilStopped();

private:
    // What a control leads to.
    struct Action
    {
        ServiceControl control;
        AcceptedControl acceptedAs;
        ServiceState pending; // while the operation runs
        ServiceState settled; // when it has returned
        void (ServiceHost::*operation)();
    };
    static const Action actions[];

    [[nodiscard]] const Action *actionFor(quint32 code) const;
    void perform(const Action &action);
    void enter(ServiceState state);
    void reportStatus();

    ServiceHost &host;
    const quint32 acceptedControls;
    const Report report;
    std::atomic<bool> started {false};
    std::mutex mutex; // guards all members below; held during each report
    std::condition_variable changed;
    ServiceStatus status;
    std::optional<std::chrono::steady_clock::time_point> stopDeadline;
};

} // namespace tarnPlatform
