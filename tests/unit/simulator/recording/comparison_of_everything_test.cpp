#include "recorded_machine.h"

#include "accessory/dock_accessory_manager.h"
#include "accessory/ec_power_mode_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/outbox/send_queue_thread.h"
#include "support/desktop_stand_ins.h"
#include "support/printing.h"

#include <algorithm>
#include <array>
#include <functional>

using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;
using tarnTest::milliseconds;

namespace {

// Everything that the service and the user do, the user at any moment.
class ComparisonOfEverything : public tarnSimulatorTest::ComparedRecording,
                               public ::testing::WithParamInterface<unsigned>
{
protected:
    ComparisonOfEverything()
    {
        EcDirverControllerHal::instance();
        tarnPipeServer::SendQueueThread::instance();
    }

    [[nodiscard]] unsigned below(unsigned bound) { return static_cast<unsigned>(random() % bound); }

    void plugAnythingAtAnyTime()
    {
        const unsigned choice = below(7);
        const milliseconds instant =
            std::max(machine.clock.now() + milliseconds(below(700)), plugged + quickestSwap);
        plugged = instant;
        machine.clock.at(instant, [this, choice] {
            constexpr std::array<std::uint8_t, 4> codes {
                ACCESSORY_DOCK, ACCESSORY_GRAPHICS, ACCESSORY_GRAPHICS_16G, ACCESSORY_KVANE};
            if (choice < codes.size())
                machine.attach(codes.at(choice));
            else if (choice == codes.size())
                machine.computer.attach(tarnSimulator::unknownAccessory(77));
            else
                machine.computer.detach();
        });
    }

    void doAnything()
    {
        const std::function<void()> actions[] = {
            [] { static_cast<void>(EcPowerModeManager::instance()->setEcPowerModeHigh()); },
            [] { static_cast<void>(EcPowerModeManager::instance()->setEcPowerModeLow()); },
            [this] { EcPowerModeManager::instance()->setEcPowerCtrlMode(static_cast<quint8>(below(3))); },
            [this] { EcPowerModeManager::instance()->setTarnPowerMode(below(4)); },
            [] { EcPowerModeManager::instance()->getTarnPowerMode(); },
            [this] { EcPowerModeManager::instance()->setSmartChargingStatus(below(2) == 0); },
            [] { EcPowerModeManager::instance()->getSmartChargingStatus(); },
            [this] { DockAccessoryManager::instance()->setDockLedStatus(below(2)); },
            [] { DockAccessoryManager::instance()->getDockLedStatus(); },
            [this] {
                static_cast<void>(
                    GraphicsAccessoryManager::instance()->setGraphicsRgb(static_cast<int>(below(8))));
            },
            [] { static_cast<void>(GraphicsAccessoryManager::instance()->getGraphicsRgb()); },
            [] { KvaneAccessoryManager::instance()->getKvaneSnCode(); },
            [this] { KvaneAccessoryManager::instance()->setKVaneLedLight(below(256)); },
            [] { KvaneAccessoryManager::instance()->getKVaneLedLight(); },
            [] { KvaneAccessoryManager::instance()->getKvaneBatteryNum(); },
            [] {
                QString text;
                EcDirverReader::instance()->getMcuVersion(text);
                EcDirverReader::instance()->getHardwareVersion(text);
            },
            [this] {
                static_cast<void>(machine.computer.armEvent({APP_EVENT_GRAPHICS_CONNECTED, 0}));
                GraphicsAccessoryManager::instance()->handleEcAppEvent();
            },
            [this] {
                static_cast<void>(machine.computer.pressGpuKey());
                GraphicsAccessoryManager::instance()->handleEcAppEvent();
            },
            [this] {
                constexpr std::array<std::uint8_t, 5> controls {0x20, 0x28, 0x38, 0x28, 0};
                for (const std::uint8_t control : controls)
                    EcDirverControllerHal::instance()->writeXdata(EC_MCU_UPDATE_CTRL, control);
                std::uint8_t control = 0;
                EcDirverControllerHal::instance()->readXdata(EC_MCU_UPDATE_CTRL, &control);
            },
        };
        actions[below(static_cast<unsigned>(std::size(actions)))]();
    }

    // The quickest that a hand can do.
    static constexpr milliseconds quickestSwap {2000};
    milliseconds plugged {0};
    std::mt19937 random {GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Orders, ComparisonOfEverything, ::testing::Range(1U, 25U));

} // namespace

// The same computer answers the same, in whatever order things are done, and however busy the host is.
TEST_P(ComparisonOfEverything, ListsNothing)
{
    constexpr int steps = 250;
    if (GetParam() % 2 == 0)
        computer.loadComputer(GetParam());
    for (int step = 0; step < steps; ++step) {
        if (below(4) == 0)
            plugAnythingAtAnyTime();
        doAnything();
        if (below(2) == 0)
            EcDirverReader::instance()->pollAccessory();
    }
    compare();
    EXPECT_EQ(all(), QStringList());
    EXPECT_GT(compared, 150u);
}
