#include "campaign.h"
#include "device/ec_registers.h"
#include "support/command_samples.h"

#include <QFile>

// What a step may change about the computer and its user.
namespace tarnCampaign {
namespace {

using namespace tarnDeviceInfos;
using namespace tarnSimulator;

// A stuck EC makes each access take 5 s of 5 ms looks, so these faults are rare and short.
bool isCostly(Fault fault)
{
    return fault == Fault::IbfStuck || fault == Fault::ObfStuck || fault == Fault::NoAnswer
        || fault == Fault::Slow || fault == Fault::EepromBusy;
}

// Registers whose failure makes a difference.
constexpr std::uint16_t registers[] = {MCU_LINK_STATUS, ACCESSORY_CODE, HARDWARE_VERSION, MCU_VERSION_MINOR,
    XEC_APP_CMD, XEC_APP_CMD_DATA0, XEC_RGB_GREEN, XEC_APP_EVENT, XEC_APP_EVENT_DATA, EEP_STATUS, EEP_DATA,
    EEP_CMD, EC_POWERMODE_PL_CTRL, EC_POWERMODE_PL2, EC_POWERMODE_PL4_CHECK, EC_POWER_SUPPLY_MODE,
    EC_FAN_MODE, EC_TARN_POWER_MODE, EC_KVANE_BATTERY_NUM, EC_TARN_CHARGING_STATUS, EC_MCU_UPDATE_CTRL};

constexpr const char *fileContents[] = {"", "0", "2", "7", "\xff\xfe\x30", "[General]\ngraphicsColor=3\n",
    "[General]\ngraphicsColor=99\n", "[General]\ngraphicsColor=@Variant(\\0\\0\\0\\x1\\x1)\n", "\n\n=;[]"};

} // namespace

void Campaign::switchFault()
{
    const FaultDescription &row = random.oneOf(faultTable());
    if (isCostly(row.fault) && !random.oneIn(6))
        return;
    if (random.oneIn(2)) {
        note("no more " + QString::fromStdString(std::string(row.name)));
        machine.faults().switchOff(row.fault);
        // The faults that slow down every access end with any other one.
        for (const FaultDescription &other : faultTable()) {
            if (isCostly(other.fault))
                machine.faults().switchOff(other.fault);
        }
        return;
    }
    std::int32_t value = row.onValue;
    if (row.kind == FaultValue::Register)
        value = random.oneOf(registers);
    else if (row.kind == FaultValue::Count)
        value = random.below(20);
    const auto skip = static_cast<std::uint32_t>(random.oneIn(2) ? 0 : random.below(6));
    note(QStringLiteral("%1 %2, after %3")
             .arg(QString::fromStdString(std::string(row.name)))
             .arg(value)
             .arg(skip));
    machine.faults().switchOn(row.fault, value, skip);
}

void Campaign::changeAccessory()
{
    const int code = random.below(8);
    note(QStringLiteral("accessory %1").arg(code));
    if (code == ACCESSORY_NONE)
        machine.computer.detach();
    else if (const Accessory *known = findAccessory(static_cast<std::uint8_t>(code)))
        machine.computer.attach(*known);
    else if (code == 7)
        machine.computer.setLinkStatus(random.byte());
    else
        machine.computer.attach(unknownAccessory(random.byte()));
}

void Campaign::changeDevices()
{
    constexpr std::uint32_t problems[] = {0, 10, problemDisabled, 31, 43};
    auto &devices = machine.computer.devices();
    const std::int32_t slot = random.oneOf(devices.allSlots());
    Device device = devices.device(slot);
    device.problem = random.oneOf(problems);
    device.started = device.problem == 0 && !random.oneIn(4);
    device.place = random.oneIn(4) ? DevicePlace::Nowhere : random.oneIn(2) ? DevicePlace::Box : device.place;
    if (device.kind == DeviceKind::Display && random.oneIn(4))
        device.description = random.oneIn(2) ? "NVIDIA GeForce RTX 4060" : "Microsoft Basic Display Adapter";
    note(QStringLiteral("device %1: problem %2").arg(slot).arg(device.problem));
    if (random.oneIn(4) && devices.allSlots().size() < deviceSlots / 2)
        static_cast<void>(devices.add(device));
    else
        devices.store(slot, device);
}

void Campaign::changeHost()
{
    note("other values of the computer");
    machine.computer.setHostBattery(random.byte());
    machine.computer.setHostCharging(random.byte());
    machine.computer.setKvaneBattery(random.byte());
    machine.computer.setKvaneCharging(random.byte());
    machine.computer.setPowerSupplyMode(static_cast<std::uint8_t>(random.below(6)));
    machine.computer.setTarnPowerMode(static_cast<std::uint8_t>(random.below(6)));
    machine.computer.pokeEeprom(EEP_SMART_CHARGING, random.oneIn(2) ? SMART_CHARGING_ON : random.byte());
}

void Campaign::changeUser()
{
    using tarnPlatform::LaunchStage;
    machine.session.serviceSession = random.oneIn(2);
    machine.session.stage = random.oneIn(3) ? static_cast<LaunchStage>(random.below(6)) : LaunchStage::Ended;
    machine.session.exitCode = static_cast<quint32>(random.below(3));
    machine.session.starts = !random.oneIn(4);
    machine.session.shown.clear();
    machine.processes.programs = {random.oneIn(2) ? "Tarn.exe" : "init"};
    note(QStringLiteral("the user answers %1").arg(machine.session.exitCode));
}

void Campaign::spoilFile()
{
    const QString name = random.oneIn(2) ? "powermodeconfig.xml" : "graphicsRGB_config.ini";
    note("spoils " + name);
    if (random.oneIn(3))
        QFile::remove(machine.folder.path(name));
    else
        machine.folder.write(name, random.oneOf(fileContents));
    if (random.oneIn(20))
        machine.folder.write(QLatin1String("Downloads/") + tarnTest::sampleFirmware, "firmware");
    if (random.oneIn(2))
        machine.folder.write("function/MCU/refuse", "");
    else
        QFile::remove(machine.folder.path("function/MCU/refuse"));
}

void Campaign::fireEvent()
{
    constexpr std::uint8_t codes[] = {APP_EVENT_GPU_KEY, APP_EVENT_GPU_KEY, APP_EVENT_GRAPHICS_CONNECTED,
        APP_EVENT_GRAPHICS_CONNECTED, APP_EVENT_BAN_GPU, 0x77};
    const AppEvent event {random.oneOf(codes), random.oneIn(2) ? APP_EVENT_DATA_DISENGAGE : random.byte()};
    note(QStringLiteral("event %1, data %2").arg(event.code).arg(event.data));
    static_cast<void>(machine.computer.armEvent(event));
}

} // namespace tarnCampaign
