#include "simulator/computer_control.h"

#include "simulator/mcu_memory.h"
#include "simulator/power_limits.h"
#include "simulator/power_on.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

ComputerControl::ComputerControl(MachineState &state)
    : machine(state)
    , faultPanel(state)
    , deviceTree(state)
    , userDesktop(state)
    , events(state.events)
    , log(state.log)
    , mcu(state)
{ }

void ComputerControl::reset()
{
    powerOn(machine);
}

// The link status is set last, so that a host that sees it finds all identity registers set. A KVane has the
// firmware that was flashed into it last.
void ComputerControl::attach(const Accessory &accessory)
{
    setHardwareVersion(accessory.hardwareVersion);
    setMcuVersion(accessory.mcuMajor, accessory.mcuMinor, accessory.mcuPatch);
    if (accessory.code == ACCESSORY_KVANE)
        mcu.powerUp();
    poke(ACCESSORY_CODE, accessory.code);
    setLinkStatus(MCU_LINKED);
}

void ComputerControl::detach()
{
    setLinkStatus(0);
    poke(ACCESSORY_CODE, ACCESSORY_NONE);
    setHardwareVersion(0);
    setMcuVersion(0, 0, 0);
}

bool ComputerControl::isAttached() const
{
    return peek(MCU_LINK_STATUS) == MCU_LINKED;
}

void ComputerControl::setLinkStatus(std::uint8_t status)
{
    poke(MCU_LINK_STATUS, status);
}

void ComputerControl::setHostBattery(std::uint8_t level)
{
    poke(EC_TARN_BATTERY_NUM, level);
}

void ComputerControl::setHostCharging(std::uint8_t status)
{
    poke(EC_TARN_CHARGING_STATUS, status);
}

void ComputerControl::setKvaneBattery(std::uint8_t level)
{
    poke(EC_KVANE_BATTERY_NUM, level);
}

void ComputerControl::setKvaneCharging(std::uint8_t status)
{
    poke(EC_KVANE_CHARGING_STATUS, status);
}

void ComputerControl::setPowerSupplyMode(std::uint8_t mode)
{
    poke(EC_POWER_SUPPLY_MODE, mode);
}

void ComputerControl::setTarnPowerMode(std::uint8_t mode)
{
    poke(EC_TARN_POWER_MODE, mode);
}

void ComputerControl::setPowerControl(std::uint8_t mode)
{
    poke(EC_POWERMODE_PL_CTRL, mode);
    PowerLimits::apply(machine);
}

void ComputerControl::setHardwareVersion(std::uint8_t version)
{
    poke(HARDWARE_VERSION, version);
}

void ComputerControl::setMcuVersion(std::uint8_t major, std::uint8_t minor, std::uint8_t patch)
{
    poke(MCU_VERSION_MAJOR, major);
    poke(MCU_VERSION_MINOR, minor);
    poke(MCU_VERSION_PATCH, patch);
}

void ComputerControl::setSmartCharging(bool on)
{
    pokeEeprom(EEP_SMART_CHARGING, on ? SMART_CHARGING_ON : SMART_CHARGING_OFF);
}

void ComputerControl::setDockLight(Colour colour)
{
    machine.accessory.dockLight.store(colour.toWord());
}

Colour ComputerControl::dockLight() const
{
    return Colour::fromWord(machine.accessory.dockLight.load());
}

void ComputerControl::setGraphicsLight(Colour colour)
{
    machine.accessory.graphicsLight.store(colour.toWord());
}

Colour ComputerControl::graphicsLight() const
{
    return Colour::fromWord(machine.accessory.graphicsLight.load());
}

void ComputerControl::setKvaneLed(std::uint8_t value)
{
    machine.accessory.kvaneLed.store(value);
}

std::uint8_t ComputerControl::kvaneLed() const
{
    return machine.accessory.kvaneLed.load();
}

void ComputerControl::setKvaneSerialNumber(const SerialNumber &bytes)
{
    for (std::size_t i = 0; i < bytes.size(); ++i)
        machine.accessory.kvaneSerialNumber[i].store(bytes[i]);
}

SerialNumber ComputerControl::kvaneSerialNumber() const
{
    SerialNumber bytes {};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = machine.accessory.kvaneSerialNumber[i].load();
    return bytes;
}

GpuReports ComputerControl::gpuReports() const
{
    return {machine.accessory.gpuReports.load(), machine.accessory.gpuDriverData.load()};
}

std::vector<std::uint8_t> ComputerControl::mcuFlash() const
{
    return McuMemory(machine.bootLoader).flash();
}

bool ComputerControl::pressGpuKey()
{
    return armEvent(gpuKeyEvent);
}

bool ComputerControl::armEvent(AppEvent event)
{
    return events.arm(event);
}

std::vector<AppEvent> ComputerControl::armedEvents() const
{
    return events.waiting();
}

std::uint8_t ComputerControl::peek(std::uint16_t address) const
{
    return machine.xdata[address].load();
}

void ComputerControl::poke(std::uint16_t address, std::uint8_t value)
{
    machine.xdata[address].store(value);
}

std::uint8_t ComputerControl::peekEeprom(std::uint8_t offset) const
{
    return machine.eeprom[offset].load();
}

void ComputerControl::pokeEeprom(std::uint8_t offset, std::uint8_t value)
{
    machine.eeprom[offset].store(value);
}

} // namespace tarnSimulator
