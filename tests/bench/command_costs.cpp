#include "accessory/dock_accessory_manager.h"
#include "accessory/ec_power_mode_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_dirver_reader.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;

namespace {

// Waits for real and adds up what was asked for.
class CountingClock : public tarnPlatform::WaitClock
{
public:
    void sleep(std::chrono::milliseconds duration) override
    {
        asked += duration;
        WaitClock::sleep(duration);
    }
    std::chrono::milliseconds asked {0};
};

struct Operation
{
    const char *name;
    int rounds;
    std::function<void()> run;
};

} // namespace

// Prints for each operation its time beside the sum of the waits it consists of.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    CountingClock clock;
    tarnPlatform::setWaitClock(&clock);

    auto *power = EcPowerModeManager::instance();
    quint8 byte = 0;
    QString text;
    const std::vector<Operation> operations = {
        {"xdata read", 100,
            [&] {
                EcDirverControllerHal::instance()->readXdata(MCU_LINK_STATUS, &byte);
            }},
        {"xdata write", 100,
            [] {
                EcDirverControllerHal::instance()->writeXdata(EC_FAN_MODE, 0);
            }},
        {"EEPROM read", 20,
            [power] {
                power->getSmartChargingStatus();
            }},
        {"EEPROM write", 20,
            [power] {
                power->setSmartChargingStatus(true);
            }},
        {"getMcuVersion", 20,
            [&text] {
                EcDirverReader::instance()->getMcuVersion(text);
            }},
        {"profile high", 10,
            [power] {
                power->setEcPowerMode(0);
            }},
        {"control mode", 20,
            [power] {
                power->setEcPowerCtrlMode(1);
            }},
        {"device power mode set", 20,
            [power] {
                power->setTarnPowerMode(1);
            }},
        {"device power mode get", 20,
            [power] {
                power->getTarnPowerMode();
            }},
        {"dock light set", 20,
            [] {
                DockAccessoryManager::instance()->setDockLedStatus(1);
            }},
        {"dock light get", 20,
            [] {
                DockAccessoryManager::instance()->getDockLedStatus();
            }},
        {"KVane serial number", 10,
            [] {
                KvaneAccessoryManager::instance()->getKvaneSnCode();
            }},
        {"KVane light set", 20,
            [] {
                KvaneAccessoryManager::instance()->setKVaneLedLight(3);
            }},
    };

    std::printf("%-24s %10s %10s %8s\n", "operation", "waits ms", "median ms", "over");
    for (const Operation &operation : operations) {
        operation.run(); // creates what is created on first use
        std::vector<double> over;
        double waits = 0;
        for (int round = 0; round < operation.rounds; ++round) {
            clock.asked = std::chrono::milliseconds::zero();
            QElapsedTimer timer;
            timer.start();
            operation.run();
            waits = static_cast<double>(clock.asked.count());
            over.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6 / waits - 1);
        }
        std::sort(over.begin(), over.end());
        const double median = over[over.size() / 2];
        std::printf(
            "%-24s %10.0f %10.2f %7.2f%%\n", operation.name, waits, waits * (1 + median), 100 * median);
    }
    return 0;
}
