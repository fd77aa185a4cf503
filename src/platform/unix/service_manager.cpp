#include "platform/service_manager.h"

#include <QCoreApplication>

namespace tarnPlatform {
namespace {

// A system without a service manager: nothing is installed and nothing can be.
class NoServiceManager final : public ServiceManager
{
public:
    QString programPath() override { return QCoreApplication::applicationFilePath(); }
    bool isInstalled(const QString &) override { return false; }
    bool isRunning(const QString &) override { return false; }
    bool install(const ServiceRegistration &) override { return false; }
    bool uninstall(const QString &) override { return false; }
    bool terminate(const QString &) override { return false; }
    bool pause(const QString &) override { return false; }
    bool resume(const QString &) override { return false; }
    bool sendCommand(const QString &, int) override { return false; }
    bool runService(const QString &, quint32, ServiceHost &, int *) override { return false; }
    void reportStopped(int) override { }
};

} // namespace

ServiceManager &ServiceManager::system()
{
    static NoServiceManager manager;
    return manager;
}

} // namespace tarnPlatform
