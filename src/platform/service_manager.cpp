#include "platform/service_manager.h"

namespace tarnPlatform {
namespace {

constexpr quint32 ownProcess = 0x10;
constexpr quint32 desktopInteraction = 0x100; // the system grants it to the local system account only
constexpr quint32 automaticStart = 2;
constexpr quint32 startOnDemand = 3;
constexpr quint32 normalErrorControl = 1;

// An account name without a domain belongs to this computer; no name stands for the local system account.
std::optional<QString> usableAccount(QString account)
{
    if (account.isEmpty())
        return std::nullopt;
    if (!account.contains(QLatin1Char('\\')))
        account.prepend(QStringLiteral(".\\"));
    if (account.endsWith(QStringLiteral("\\LocalSystem")))
        return std::nullopt;
    return account;
}

} // namespace

ServiceEntry serviceEntry(const ServiceRegistration &registration)
{
    ServiceEntry entry;
    entry.account = usableAccount(registration.account);
    if (entry.account && !registration.password.isEmpty())
        entry.password = registration.password;
    entry.serviceType = entry.account ? ownProcess : ownProcess | desktopInteraction;
    entry.startType = registration.startAutomatically ? automaticStart : startOnDemand;
    entry.errorControl = normalErrorControl;
    return entry;
}

} // namespace tarnPlatform
