#include "panel/computer/machine_facts.h"

#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/tool/tool_text.h"

#include <algorithm>

namespace tarnPanel {

using namespace tarnDeviceInfos;
using namespace tarnSimulator;

namespace {

struct AccessoryName
{
    const char *name; // of tarnsim
    const char *title;
};

constexpr AccessoryName accessoryTitles[] = {
    {"dock", "Dock"},
    {"graphics", "Graphics box"},
    {"graphics16g", "Graphics 16 GB"},
    {"kvane", "KVane"},
    {"unknown", "Unknown"},
};

struct McuText
{
    McuMode mode;
    const char *text;
};

constexpr McuText mcuTexts[] = {
    {McuMode::Firmware, "MCU: firmware runs"},
    {McuMode::BootLoader, "MCU: boot loader runs"},
    {McuMode::HeldInReset, "MCU: held in reset"},
    {McuMode::NoFirmware, "MCU: nothing runs"},
};

QColor colourOf(Colour colour)
{
    return {colour.red, colour.green, colour.blue};
}

void readGpu(const ComputerControl &computer, MachineFacts &facts)
{
    const DeviceTree &tree = computer.devices();
    for (const std::int32_t slot : tree.presentSlots()) {
        const Device device = tree.device(slot);
        if (device.kind != DeviceKind::Display || device.place != DevicePlace::Box)
            continue;
        facts.gpuName = toQString(device.description);
        facts.gpuProblem = device.problem;
        if (device.started)
            facts.gpu = GpuState::Started;
        else if (device.problem == 0 || device.problem == problemDisabled)
            facts.gpu = GpuState::Stopped;
        else
            facts.gpu = GpuState::Problem;
        return;
    }
}

// Beside the picture of a battery, which stands for the word where there is little room.
const QString batteryWord = QStringLiteral("Battery ");

QString batteryText(int level, bool isCharging)
{
    return QStringLiteral("%1 %%2").arg(level).arg(isCharging ? QStringLiteral(", charging") : QString());
}

QString gpuText(const MachineFacts &facts)
{
    switch (facts.gpu) {
    case GpuState::None:
        return QStringLiteral("GPU: none");
    case GpuState::Stopped:
        return QStringLiteral("GPU: stopped");
    case GpuState::Started:
        return QStringLiteral("GPU: started");
    case GpuState::Problem:
        break;
    }
    return QStringLiteral("GPU: driver problem %1").arg(facts.gpuProblem);
}

QString colourName(const QColor &colour)
{
    if (colour == QColor(Qt::black))
        return QStringLiteral("off");
    return QStringLiteral("%1,%2,%3").arg(colour.red()).arg(colour.green()).arg(colour.blue());
}

QStringList graphicsLines(const MachineFacts &facts)
{
    QStringList lines {gpuText(facts)};
    if (facts.gpu != GpuState::None)
        lines << facts.gpuName;
    return lines << QStringLiteral("Light: %1").arg(colourName(facts.graphicsLight));
}

QStringList kvaneLines(const MachineFacts &facts)
{
    const auto mcu = std::ranges::find(mcuTexts, facts.mcu, &McuText::mode);
    return {batteryText(facts.kvaneBattery, facts.isKvaneCharging),
        QStringLiteral("Light: %1 of 255").arg(facts.kvaneLight), QString::fromLatin1(mcu->text)};
}

QString sentenceOf(const QStringList &lines)
{
    return lines.isEmpty() ? QString() : lines.join(QStringLiteral(". ")) + QStringLiteral(". ");
}

} // namespace

bool MachineFacts::hasDock() const
{
    return isAttached && accessoryCode == ACCESSORY_DOCK;
}

bool MachineFacts::hasGraphics() const
{
    return isAttached && (accessoryCode == ACCESSORY_GRAPHICS || accessoryCode == ACCESSORY_GRAPHICS_16G);
}

bool MachineFacts::hasKvane() const
{
    return isAttached && accessoryCode == ACCESSORY_KVANE;
}

MachineFacts factsOf(const ComputerControl &computer)
{
    MachineFacts facts;
    facts.isAttached = computer.isAttached();
    facts.userWaits = computer.desktop().answer() == Desktop::waits;
    facts.accessoryCode = computer.peek(ACCESSORY_CODE);
    facts.battery = computer.peek(EC_TARN_BATTERY_NUM);
    facts.isCharging = (computer.peek(EC_TARN_CHARGING_STATUS) & TARN_CHARGING_BIT) != 0;
    facts.kvaneBattery = computer.peek(EC_KVANE_BATTERY_NUM);
    facts.isKvaneCharging = (computer.peek(EC_KVANE_CHARGING_STATUS) & KVANE_CHARGING_BIT) != 0;
    facts.kvaneLight = computer.kvaneLed();
    facts.dockLight = colourOf(computer.dockLight());
    facts.graphicsLight = colourOf(computer.graphicsLight());
    facts.mcu = computer.mcuMode();
    facts.supplyMode = computer.peek(EC_POWER_SUPPLY_MODE);
    readGpu(computer, facts);
    return facts;
}

QString accessoryTitle(std::uint8_t code)
{
    const Accessory *known = findAccessory(code);
    return known == nullptr ? QStringLiteral("Unknown device %1").arg(code)
                            : accessoryTitle(toQString(known->name));
}

QString accessoryTitle(const QString &name)
{
    const auto row = std::ranges::find_if(
        accessoryTitles, [&name](const AccessoryName &known) { return name == QLatin1String(known.name); });
    return row == std::end(accessoryTitles) ? name : QString::fromLatin1(row->title);
}

QStringList computerLines(const MachineFacts &facts)
{
    return {
        batteryText(facts.battery, facts.isCharging), QStringLiteral("Supply mode %1").arg(facts.supplyMode)};
}

QStringList accessoryLines(const MachineFacts &facts)
{
    if (facts.hasDock()) {
        const bool isOn = facts.dockLight != QColor(Qt::black);
        return {isOn ? QStringLiteral("Light: on") : QStringLiteral("Light: off")};
    }
    if (facts.hasGraphics())
        return graphicsLines(facts);
    if (facts.hasKvane())
        return kvaneLines(facts);
    if (facts.isAttached)
        return {QStringLiteral("No host software knows it")};
    return {};
}

QString descriptionOf(const MachineFacts &facts)
{
    QString text = QStringLiteral("The computer: ") + batteryWord + sentenceOf(computerLines(facts));
    if (facts.isAttached) {
        text += QStringLiteral("Plugged in: %1. ").arg(accessoryTitle(facts.accessoryCode));
        text += (facts.hasKvane() ? batteryWord : QString()) + sentenceOf(accessoryLines(facts));
    } else {
        text += QStringLiteral("Nothing is plugged in.");
    }
    return text.trimmed();
}

} // namespace tarnPanel
