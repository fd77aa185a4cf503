#pragma once

#include <QString>

namespace tarnPlatform {

// How a service is registered with the system.
struct ServiceRegistration
{
    QString name; // key and display name in one
    QString description;
    QString account; // empty: the local system account
    QString password; // used only with an account
    bool startAutomatically = true;
};

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

    [[nodiscard]] virtual bool isInstalled(const QString &name) = 0;
    [[nodiscard]] virtual bool isRunning(const QString &name) = 0;
    // The program that the service is registered with; empty when it is not installed.
    [[nodiscard]] virtual QString programPath(const QString &name) = 0;

    [[nodiscard]] virtual bool install(const ServiceRegistration &registration) = 0;
    [[nodiscard]] virtual bool uninstall(const QString &name) = 0;
    [[nodiscard]] virtual bool terminate(const QString &name) = 0;
    virtual bool pause(const QString &name) = 0;
    virtual bool resume(const QString &name) = 0;
    virtual bool sendCommand(const QString &name, int code) = 0;

    // Hands the process to the manager. False when it was not the manager that started the process.
    [[nodiscard]] virtual bool runService(const QString &name, ServiceHost &host, int *exitCode) = 0;

    static ServiceManager &system();
};

} // namespace tarnPlatform
