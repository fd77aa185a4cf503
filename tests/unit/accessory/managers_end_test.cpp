#include "accessory/dock_accessory_manager.h"
#include "accessory/ec_power_mode_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "graphics/graphics_accessory_manager.h"
#include "support/log_capture.h"

#include <gtest/gtest.h>

using namespace tarnAccessoryManager;

// The service never destroys its managers; if one is destroyed, the log says so.
TEST(ManagersEnd, IsLogged)
{
    const tarnTest::LogCapture log;
    delete DockAccessoryManager::instance();
    delete EcPowerModeManager::instance();
    delete KvaneAccessoryManager::instance();
    delete GraphicsAccessoryManager::instance();
    for (const char *name :
        {"DockAccessoryManager", "EcPowerModeManager", "KvaneAccessoryManager", "GraphicsAccessoryManager"})
        EXPECT_EQ(log.count(QString("%1 object is killed.").arg(name)), 1) << name;
}
