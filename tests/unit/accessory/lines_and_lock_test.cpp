#include "accessory/dock_accessory_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "graphics/graphics_accessory_manager.h"
#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::DockAccessoryManager;
using tarnAccessoryManager::EcPowerModeManager;
using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnAccessoryManager::KvaneAccessoryManager;

// An operation, and how many lines it logs before it has the EC: they show in the log that it waits. No rule
// says how many these are, so each row states what log readers know of its operation.
struct LoggedOperation
{
    const char *name;
    std::function<void()> run;
    int linesBeforeLock;
};

namespace {

const LoggedOperation loggedOperations[] = {
    {"setEcPowerModeHigh", [] { EcPowerModeManager::instance()->setEcPowerModeHigh(); }, 1},
    {"setEcPowerModeBalance", [] { EcPowerModeManager::instance()->setEcPowerModeBalance(); }, 1},
    {"setEcPowerModeLow", [] { EcPowerModeManager::instance()->setEcPowerModeLow(); }, 1},
    {"setEcPowerCtrlMode", [] { EcPowerModeManager::instance()->setEcPowerCtrlMode(PL_CTRL_MANUAL); }, 1},
    {"getSmartChargingStatus", [] { EcPowerModeManager::instance()->getSmartChargingStatus(); }, 0},
    {"setSmartChargingStatus", [] { EcPowerModeManager::instance()->setSmartChargingStatus(true); }, 0},
    {"getTarnPowerMode", [] { EcPowerModeManager::instance()->getTarnPowerMode(); }, 1},
    {"setTarnPowerMode", [] { EcPowerModeManager::instance()->setTarnPowerMode(tarnTest::balanceProfile); },
        1},
    {"getDockLedStatus", [] { DockAccessoryManager::instance()->getDockLedStatus(); }, 1},
    {"setDockLedStatus", [] { DockAccessoryManager::instance()->setDockLedStatus(1); }, 1},
    {"getGraphicsRgb", [] { (void)GraphicsAccessoryManager::instance()->getGraphicsRgb(); }, 0},
    {"setGraphicsRgb", [] { (void)GraphicsAccessoryManager::instance()->setGraphicsRgb(1); }, 0},
    {"setGraphicsRgbWithoutSuchAColour",
        [] { (void)GraphicsAccessoryManager::instance()->setGraphicsRgb(8); }, 0},
    {"getKvaneSnCode", [] { KvaneAccessoryManager::instance()->getKvaneSnCode(); }, 1},
    {"setKVaneLedLight", [] { KvaneAccessoryManager::instance()->setKVaneLedLight(1); }, 1},
};

} // namespace

class LinesAndLock : public tarnTest::PowerModeTest, public ::testing::WithParamInterface<LoggedOperation>
{ };

TEST_P(LinesAndLock, AllButTheFirstLineAreWrittenWithTheEcHeld)
{
    DockAccessoryManager::instance();
    GraphicsAccessoryManager::instance();
    KvaneAccessoryManager::instance();
    machine.log.clear();
    QStringList without;
    int with = 0;
    machine.log.onLine = [&](const QString &line) {
        if (ecAccessMutex.isLocked())
            ++with;
        else
            without << line;
    };
    GetParam().run();
    EXPECT_EQ(without.size(), GetParam().linesBeforeLock);
    EXPECT_GT(with, 0);
    EXPECT_EQ(machine.log.lines().mid(0, without.size()), without); // and they come first
}

INSTANTIATE_TEST_SUITE_P(Operations, LinesAndLock, ::testing::ValuesIn(loggedOperations),
    [](const auto &row) { return std::string(row.param.name); });
