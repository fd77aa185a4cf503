#include "platform/service_manager.h"

namespace tarnPlatform {
namespace {

// A system without a service manager: nothing is installed and nothing can be.
class NoServiceManager final : public ServiceManager
{
public:
    bool isInstalled(const QString &) override { return false; }
    bool isRunning(const QString &) override { return false; }
    QString programPath(const QString &) override { return {}; }
    bool install(const ServiceRegistration &) override { return false; }
    bool uninstall(const QString &) override { return false; }
    bool terminate(const QString &) override { return false; }
    bool pause(const QString &) override { return false; }
    bool resume(const QString &) override { return false; }
    bool sendCommand(const QString &, int) override { return false; }
    bool runService(const QString &, ServiceHost &, int *) override { return false; }
};

} // namespace

ServiceManager &ServiceManager::system()
{
    static NoServiceManager manager;
    return manager;
}

} // namespace tarnPlatform
