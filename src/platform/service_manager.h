#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace tarnPlatform {

// The controls that the system's service manager may send to a running service, with its numbers.
enum ServiceControl : quint32 {
    ControlStop = 1,
    ControlPause = 2,
    ControlContinue = 3,
    ControlInterrogate = 4,
    ControlShutdown = 5,
    FirstUserControl = 128,
    LastUserControl = 255,
};

// Which of them a service accepts; interrogation and user commands always reach it.
enum AcceptedControl : quint32 {
    AcceptsNothing = 0x00,
    AcceptsStop = 0x01,
    AcceptsPauseAndContinue = 0x02,
    AcceptsShutdown = 0x04,
};

// User commands have numbers of their own, from 0 on.
constexpr int lastUserCommand = LastUserControl - FirstUserControl;

constexpr bool isUserCommand(int code)
{
    return code >= 0 && code <= lastUserCommand;
}

constexpr quint32 userControl(int command)
{
    return FirstUserControl + static_cast<quint32>(command);
}

// How a service is to be registered with the system.
struct ServiceRegistration
{
    QString name; // key and display name in one
    QString description; // empty: none is stored
    QString account; // empty: the local system account
    QString password; // used only with an account
    bool startAutomatically = true;
};

// The same in the terms of the system's service database, whose numbers these are.
struct ServiceEntry
{
    quint32 serviceType = 0;
    quint32 startType = 0;
    quint32 errorControl = 0;
    std::optional<QString> account; // none: the local system account
    std::optional<QString> password;

    bool operator==(const ServiceEntry &) const = default;
};

[[nodiscard]] ServiceEntry serviceEntry(const ServiceRegistration &registration);

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
    // Runs the application's event loop until the service has been stopped; returns the exit code.
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
    // True when the service has accepted the request; it may stop later.
    [[nodiscard]] virtual bool terminate(const QString &name) = 0;
    virtual bool pause(const QString &name) = 0;
    virtual bool resume(const QString &name) = 0;
    virtual bool sendCommand(const QString &name, int code) = 0;

    // Hands the process to the manager, which may send the host the accepted controls (AcceptedControl) until
    // the host's event loop has ended. False when the manager does not run the process.
    [[nodiscard]] virtual bool runService(
        const QString &name, quint32 acceptedControls, ServiceHost &host, int *exitCode) = 0;
    // Reports to the manager that the service has stopped. Called last, when the service has released
    // everything. Does nothing in a process that the manager does not run.
    virtual void reportStopped(int exitCode) = 0;

    static ServiceManager &system();
};

} // namespace tarnPlatform
