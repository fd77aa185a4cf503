#pragma once

#include "service/qt_service_base.h"

#include <QCoreApplication>
#include <QStringList>

#include <memory>

// Adds the application object to the host. A process has only one such object, so one that the entry function
// has already made is used.
template <typename Application> class QtService : public QtServiceBase
{
public:
    QtService(int argc, char **argv, const QString &requestedName,
        tarnPlatform::ServiceManager &serviceManager = tarnPlatform::ServiceManager::system())
        : QtServiceBase(argc, argv, requestedName, serviceManager)
    { }

protected:
    void createApplication(int &argc, char **argv) override
    {
        if (!QCoreApplication::instance())
            ownApplication = std::make_unique<Application>(argc, argv);
    }

    int executeApplication() override { return Application::exec(); }

    [[nodiscard]] QStringList applicationArguments() const override { return Application::arguments(); }

private:
    std::unique_ptr<Application> ownApplication;
};
