#pragma once

#include "platform/service_registration.h"

#include <QString>

namespace tarnPlatform {

// What the system's service manager asks of a running service; called on the application thread.
class ServiceHost
{
public:
    virtual ~ServiceHost() = default;
    virtual void startService() = 0;
    virtual void stopService() = 0;
    virtual void pauseService() = 0;
    virtual void resumeService() = 0;
    virtual void processServiceCommand(int code) = 0;
    // Runs the application's event loop until the service has been stopped; the exit code.
    virtual int runEventLoop() = 0;
};

// The system's service manager, seen from a program that installs, controls or is a service.
class ServiceManager
{
public:
    virtual ~ServiceManager() = default;

    // The program of this process, as the system names it: what a service is installed with.
    [[nodiscard]] virtual QString programPath() = 0;
    [[nodiscard]] virtual bool isInstalled(const QString &name) = 0;
    [[nodiscard]] virtual bool isRunning(const QString &name) = 0;

    [[nodiscard]] virtual bool install(const ServiceRegistration &registration) = 0;
    [[nodiscard]] virtual bool uninstall(const QString &name) = 0;
    // True when the service has taken the request; it stops in its own time.
    [[nodiscard]] virtual bool terminate(const QString &name) = 0;
    virtual bool pause(const QString &name) = 0;
    virtual bool resume(const QString &name) = 0;
    virtual bool sendCommand(const QString &name, int code) = 0;

    // Hands the process to the manager, who may ask the host for the accepted controls (AcceptedControl)
    // until its event loop has ended. False when the manager does not run the process.
    [[nodiscard]] virtual bool runService(
        const QString &name, quint32 acceptedControls, ServiceHost &host, int *exitCode) = 0;
    // The last thing before the process ends, when the service holds nothing any more: the manager learns
    // that it has stopped. Does nothing in a process that the manager does not run.
    virtual void reportStopped(int exitCode) = 0;

    static ServiceManager &system();
};

} // namespace tarnPlatform
