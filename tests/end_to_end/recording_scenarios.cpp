#include "end_to_end/recording_scenarios.h"

#include "device/ec_registers.h"

namespace tarnTest {

using namespace tarnDeviceInfos;

namespace {

const QString done = QStringLiteral("successed");

bool plugIn(RecordedService &computer, std::uint8_t code, const char *name)
{
    computer.service.attach(code);
    return computer.client.waitForNotification("changeAccessoryType", name) && computer.waitForHolds(2);
}

bool unplug(RecordedService &computer)
{
    computer.service.computer().detach();
    return computer.client.waitForNotification("changeAccessoryType", "disconnected")
        && computer.waitForHolds(2);
}

bool comeAndGo(RecordedService &computer, std::uint8_t code, const char *name)
{
    return plugIn(computer, code, name) && computer.ask("getAccessoryType") == QLatin1String(name)
        && !computer.ask("getMcuVersion").isEmpty() && unplug(computer);
}

bool dock(RecordedService &computer)
{
    return comeAndGo(computer, ACCESSORY_DOCK, "dock");
}

bool graphicsBox(RecordedService &computer)
{
    return comeAndGo(computer, ACCESSORY_GRAPHICS, "graphics");
}

bool largeGraphicsBox(RecordedService &computer)
{
    return comeAndGo(computer, ACCESSORY_GRAPHICS_16G, "graphics");
}

bool kvane(RecordedService &computer)
{
    return plugIn(computer, ACCESSORY_KVANE, "k_vane") && !computer.ask("getTarnKvaneSnCode").isEmpty()
        && !computer.ask("getHardwareVersion").isEmpty() && unplug(computer);
}

bool applyProfile(RecordedService &computer, const char *profile)
{
    return !computer.ask("powerModeControl", "first").isEmpty()
        && computer.ask("powerModeControl", profile) == done
        && computer.ask("setTarnPowerMode", profile) == done
        && computer.ask("getTarnPowerMode") == QLatin1String(profile);
}

bool balanced(RecordedService &computer)
{
    return applyProfile(computer, "balance");
}

bool quiet(RecordedService &computer)
{
    return applyProfile(computer, "low");
}

bool fast(RecordedService &computer)
{
    return applyProfile(computer, "high");
}

bool smartCharging(RecordedService &computer)
{
    return computer.ask("setSmartChargingStatus", "OFF") == done
        && computer.ask("getSmartChargingStatus") == QLatin1String("OFF")
        && computer.ask("setSmartChargingStatus", "ON") == done
        && computer.ask("getSmartChargingStatus") == QLatin1String("ON");
}

bool dockLight(RecordedService &computer)
{
    return plugIn(computer, ACCESSORY_DOCK, "dock") && computer.ask("setDockLedStatus", "off") == done
        && computer.ask("getDockLedStatus") == QLatin1String("off")
        && computer.ask("setDockLedStatus", "on") == done
        && computer.ask("getDockLedStatus") == QLatin1String("on");
}

bool graphicsLight(RecordedService &computer)
{
    return plugIn(computer, ACCESSORY_GRAPHICS, "graphics") && computer.ask("setGraphicsRGB", "red") == done
        && computer.ask("getGraphicsRGB") == QLatin1String("red")
        && computer.ask("setGraphicsRGB", "blue") == done
        && computer.ask("getGraphicsRGB") == QLatin1String("blue");
}

bool kvaneLight(RecordedService &computer)
{
    if (!plugIn(computer, ACCESSORY_KVANE, "k_vane"))
        return false;
    computer.ask("setKVaneLedLight", "7"); // the answer tells nothing
    return computer.client.waitForNotification("getKVaneLedLight", "7");
}

bool disengagement(RecordedService &computer)
{
    const QString finished = QStringLiteral("Graphics disengagement process finished.");
    return plugIn(computer, ACCESSORY_GRAPHICS, "graphics")
        && computer.service.waitForLog(QStringLiteral("GraphicsActive_log: Successed to active graphics."))
        && computer.waitForHolds(2) && computer.service.computer().pressGpuKey()
        && computer.service.waitForLog(finished) && computer.waitForHolds(2);
}

bool mcuUpdateMode(RecordedService &computer)
{
    return plugIn(computer, ACCESSORY_KVANE, "k_vane") && computer.ask("requestEnterMcuUpdateMode") == done
        && !computer.ask("requestLeaveMcuUpdateMode").isEmpty() && computer.waitForHolds(2);
}

bool stuckEc(RecordedService &computer)
{
    computer.service.breakDown("no-answer");
    if (!computer.service.waitForLog(QStringLiteral("Library loaded second")))
        return false;
    computer.service.repair();
    return computer.waitForHolds(2) && comeAndGo(computer, ACCESSORY_DOCK, "dock");
}

constexpr RecordingScenario scenarios[] = {
    {"dock", dock},
    {"graphics-box", graphicsBox},
    {"graphics-box-16g", largeGraphicsBox},
    {"kvane", kvane},
    {"profile-balance", balanced},
    {"profile-low", quiet},
    {"profile-high", fast},
    {"smart-charging", smartCharging},
    {"dock-light", dockLight},
    {"graphics-light", graphicsLight},
    {"kvane-light", kvaneLight},
    {"disengagement", disengagement},
    {"mcu-update-mode", mcuUpdateMode},
    {"stuck-ec", stuckEc},
};

} // namespace

std::span<const RecordingScenario> recordingScenarios()
{
    return scenarios;
}

QString recordScenario(RecordedService &computer, const RecordingScenario &scenario)
{
    return computer.start() && scenario.play(computer) ? computer.finish() : QString();
}

} // namespace tarnTest
