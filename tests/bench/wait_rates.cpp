#include "wait_rates.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/monitor/ec_dirver_reader.h"
#include "simulator/accessory_catalog.h"
#include "support/simulated_machine.h"

#include <QElapsedTimer>

namespace tarnBench {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using tarnDeviceInfos::ecAccessMutex;
using tarnDeviceInfos::EcDirverReader;

constexpr milliseconds settleTime = 30s; // the GPU has been brought up by then
constexpr milliseconds countedTime = 600s;
constexpr milliseconds cyclePause = 100ms; // the loop's own

// Counts in the loop's waits and changes the accessory between two cycles.
class RateWatch
{
public:
    explicit RateWatch(tarnTest::SimulatedMachine &subject)
        : machine(subject)
    {
        rates.emplace_back();
        for (const auto &accessory : tarnSimulator::accessoryCatalog())
            rates.push_back(
                {QString::fromUtf8(accessory.name.data(), static_cast<qsizetype>(accessory.name.size()))});
    }

    void onWait(milliseconds duration)
    {
        ++waits;
        if (duration != cyclePause)
            return;
        // One pause of each cycle is under the lock, two are not.
        if (ecAccessMutex.isLocked())
            ++cycles;
        else
            betweenCycles();
    }

    std::vector<WaitRate> rates;

private:
    void betweenCycles()
    {
        const milliseconds now = machine.clock.now();
        machine.clock.forgetWaits();
        machine.log.clear();
        if (!isCounting && now >= nextStep) {
            isCounting = true;
            begun = now;
            nextStep = now + countedTime;
            waits = cycles = 0;
            timer.start();
        } else if (isCounting && now >= nextStep) {
            note(now - begun);
            change(now);
        }
    }

    void note(milliseconds counted)
    {
        const auto ms = static_cast<double>(counted.count());
        rates[phase].cycleMs = ms / cycles;
        rates[phase].waitsPerSecond = 1000 * waits / ms;
        rates[phase].workUs = static_cast<double>(timer.nsecsElapsed()) / 1e3 / cycles;
    }

    void change(milliseconds now)
    {
        isCounting = false;
        nextStep = now + settleTime;
        if (++phase == rates.size())
            EcDirverReader::instance()->requestEnd();
        else
            machine.computer.attach(*tarnSimulator::findAccessory(rates[phase].accessory.toStdString()));
    }

    tarnTest::SimulatedMachine &machine;
    std::size_t phase = 0;
    bool isCounting = false;
    milliseconds begun {0};
    milliseconds nextStep = settleTime;
    double waits = 0;
    double cycles = 0;
    QElapsedTimer timer;
};

} // namespace

std::vector<WaitRate> measureWaitRates()
{
    tarnTest::SimulatedMachine machine;
    tarnDeviceInfos::EcDirverControllerHal::instance();
    RateWatch watch(machine);
    machine.clock.onWait = [&watch](milliseconds duration) {
        watch.onWait(duration);
    };
    EcDirverReader::instance()->run();
    return watch.rates;
}

} // namespace tarnBench
