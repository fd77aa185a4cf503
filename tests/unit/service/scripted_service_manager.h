#pragma once

#include "platform/service_manager.h"

#include <QStringList>

#include <functional>

namespace tarnTest {

// A service manager that notes what it is asked for and answers as the test says.
class ScriptedServiceManager final : public tarnPlatform::ServiceManager
{
public:
    QStringList calls; // all but the questions, which change nothing
    bool installed = false;
    bool running = false;
    bool obeys = true;
    // What the manager does with a process that it has started; without it, it has started none.
    std::function<int(tarnPlatform::ServiceHost &)> run;
    std::function<void()> onStopped = [] {
    };

    QString programPath() override { return QStringLiteral("C:\\where it is\\tarn.exe"); }
    bool isInstalled(const QString &) override { return installed; }
    bool isRunning(const QString &) override { return running; }
    bool install(const tarnPlatform::ServiceRegistration &registration) override
    {
        return note({QStringLiteral("install"), registration.name, registration.description,
            registration.account, registration.password,
            registration.startAutomatically ? QStringLiteral("automatic") : QStringLiteral("on demand")});
    }
    bool uninstall(const QString &name) override { return note({QStringLiteral("uninstall"), name}); }
    bool terminate(const QString &name) override { return note({QStringLiteral("terminate"), name}); }
    bool pause(const QString &name) override { return note({QStringLiteral("pause"), name}); }
    bool resume(const QString &name) override { return note({QStringLiteral("resume"), name}); }
    bool sendCommand(const QString &name, int code) override
    {
        return note({QStringLiteral("command"), name, QString::number(code)});
    }
    bool runService(const QString &name, quint32 acceptedControls, tarnPlatform::ServiceHost &host,
        int *exitCode) override
    {
        note({QStringLiteral("run"), name, QString::number(acceptedControls)});
        if (run)
            *exitCode = run(host);
        return static_cast<bool>(run);
    }
    void reportStopped(int exitCode) override
    {
        onStopped();
        note({QStringLiteral("stopped"), QString::number(exitCode)});
    }

private:
    bool note(const QStringList &words)
    {
        calls << words.join(QLatin1Char('|'));
        return obeys;
    }
};

} // namespace tarnTest
