#include "accessory/dock_accessory_manager.h"
#include "graphics/graphics_accessory_manager.h"
#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::DockAccessoryManager;
using tarnAccessoryManager::EcPowerModeManager;
using tarnAccessoryManager::GraphicsAccessoryManager;

// An operation that is no command or whose command does not tell what it gives, and what it gives when the EC
// is not to be had any more because the process ends. The commands are in commands_without_ec_test.cpp.
struct ReleasedOperation
{
    const char *name;
    std::function<int()> run;
    int failure;
};

namespace {

const ReleasedOperation releasedOperations[] = {
    {"setEcPowerModeHigh", [] { return EcPowerModeManager::instance()->setEcPowerModeHigh(); }, -2},
    {"setEcPowerModeBalance", [] { return EcPowerModeManager::instance()->setEcPowerModeBalance(); }, -2},
    {"setEcPowerModeLow", [] { return EcPowerModeManager::instance()->setEcPowerModeLow(); }, -2},
    {"setEcPowerCtrlMode", [] { return EcPowerModeManager::instance()->setEcPowerCtrlMode(PL_CTRL_MANUAL); },
        -1},
    {"setEcPowerMode", [] { return EcPowerModeManager::instance()->setEcPowerMode(tarnTest::highProfile); },
        -1},
    {"restorePowerModeAtStart", [] { return EcPowerModeManager::instance()->restorePowerModeAtStart(); }, -2},
    {"getDockLedStatus", [] { return DockAccessoryManager::instance()->getDockLedStatus(); }, -1},
    {"setDockLedStatus", [] { return DockAccessoryManager::instance()->setDockLedStatus(1); }, -2},
    {"getGraphicsRgb", [] { return GraphicsAccessoryManager::instance()->getGraphicsRgb(); }, -1},
    {"setGraphicsRgb", [] { return GraphicsAccessoryManager::instance()->setGraphicsRgb(1); }, -2},
};

} // namespace

class ShutdownRelease : public tarnTest::PowerModeTest,
                        public ::testing::WithParamInterface<ReleasedOperation>
{ };

TEST_P(ShutdownRelease, TheOperationFailsAtOnceWithoutTouchingTheEC)
{
    ecAccessMutex.releaseWaiters();
    EXPECT_EQ(GetParam().run(), GetParam().failure);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(elapsed(), 0);
    EXPECT_FALSE(QFile::exists(machine.folder.path(tarnTest::profileFileName)));
}

// The present holder keeps the EC; the operation neither waits for the lock nor releases it.
TEST_P(ShutdownRelease, TheHoldOfAnotherStays)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ecAccessMutex.releaseWaiters();
    EXPECT_EQ(GetParam().run(), GetParam().failure);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_TRUE(ecAccessMutex.isLocked());
    ecAccessMutex.unlock();
}

INSTANTIATE_TEST_SUITE_P(Operations, ShutdownRelease, ::testing::ValuesIn(releasedOperations),
    [](const auto &row) { return std::string(row.param.name); });
