#include "platform/service_manager.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

// Without a service manager nothing is installed, and every request fails instead of counting as done.
TEST(ServiceManager, OfASystemWithoutOneDoesNothing)
{
    auto &manager = tarnPlatform::ServiceManager::system();
    const QString name = QStringLiteral("Tarn Service");
    EXPECT_EQ(manager.programPath(), QCoreApplication::applicationFilePath());
    EXPECT_FALSE(manager.isInstalled(name));
    EXPECT_FALSE(manager.isRunning(name));
    EXPECT_FALSE(manager.install({}));
    EXPECT_FALSE(manager.uninstall(name));
    EXPECT_FALSE(manager.terminate(name));
    EXPECT_FALSE(manager.pause(name));
    EXPECT_FALSE(manager.resume(name));
    EXPECT_FALSE(manager.sendCommand(name, 0));
}
