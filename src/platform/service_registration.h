#pragma once

#include <QString>

#include <optional>

namespace tarnPlatform {

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

} // namespace tarnPlatform
