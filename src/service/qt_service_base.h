#pragma once

#include "platform/service_manager.h"

#include <QFlags>
#include <QString>
#include <QStringList>

#include <vector>

// Hosts a service: looks at the first argument and performs one control action on the installed service, runs
// the service's logic as an ordinary process, or hands the process to the system's service manager.
class QtServiceBase : private tarnPlatform::ServiceHost
{
public:
    enum StartupType { AutoStartup = 0, ManualStartup = 1 };
    enum ServiceFlag {
        Default = 0x00,
        CanBeSuspended = 0x01,
        CannotBeStopped = 0x02,
        NeedsStopOnShutdown = 0x04
    };
    Q_DECLARE_FLAGS(ServiceFlags, ServiceFlag)

    // The controls (tarnPlatform::AcceptedControl) that a service with these flags asks its manager for.
    [[nodiscard]] static quint32 acceptedControls(ServiceFlags flags);

    // A name longer than 255 characters is cut; backslashes in it become NUL characters.
    QtServiceBase(int argc, char **argv, const QString &requestedName,
        tarnPlatform::ServiceManager &serviceManager = tarnPlatform::ServiceManager::system());
    ~QtServiceBase() override = default;
    QtServiceBase(const QtServiceBase &) = delete;
    QtServiceBase &operator=(const QtServiceBase &) = delete;

    // Does what the first argument says; returns the process's exit code.
    [[nodiscard]] int exec();
    // The exit code of a process that was asked to end before exec(): an action that was not performed must
    // not look successful.
    [[nodiscard]] static int exitCodeBeforeExec(int argc, char **argv);
    // False when the first argument is an action that is about the service, which another process may be.
    [[nodiscard]] static bool isToRun(int argc, char **argv);

    [[nodiscard]] QString serviceName() const { return name; }
    [[nodiscard]] QString serviceDescription() const { return description; }
    [[nodiscard]] StartupType startupType() const { return startup; }
    [[nodiscard]] ServiceFlags serviceFlags() const { return flags; }
    void setServiceDescription(const QString &text) { description = text; }
    void setStartupType(StartupType type) { startup = type; }
    void setServiceFlags(ServiceFlags newFlags) { flags = newFlags; }

protected:
    virtual void start() = 0;
    virtual void stop() { }
    virtual void pause() { }
    virtual void resume() { }
    virtual void processCommand(int) { }

    virtual void createApplication(int &argc, char **argv) = 0;
    virtual int executeApplication() = 0;
    // The command line as the application object knows it; called after createApplication().
    [[nodiscard]] virtual QStringList applicationArguments() const = 0;

private:
    struct Option;
    static const Option options[];
    // Null when the first argument is not an option.
    [[nodiscard]] static const Option *chosenOption(int argc, char **argv);

    int installService();
    int uninstallService();
    int printVersion();
    int executeAsApplication();
    int terminateService();
    int sendPause();
    int sendResume();
    int sendUserCommand();
    int printHelp();
    int runUnderManager();

    // Empty when there is no such argument.
    [[nodiscard]] QString argument(int index);
    [[nodiscard]] QByteArray latinName() const { return name.toLatin1(); }

    void startService() override { start(); }
    void stopService() override;
    void pauseService() override { pause(); }
    void resumeService() override { resume(); }
    void processServiceCommand(int code) override { processCommand(code); }
    int runEventLoop() override { return executeApplication(); }

    tarnPlatform::ServiceManager &manager;
    QString name;
    QString description;
    StartupType startup = AutoStartup;
    ServiceFlags flags = Default;
    std::vector<char *> arguments;
    int argumentCount = 0;
    bool stopped = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QtServiceBase::ServiceFlags)
