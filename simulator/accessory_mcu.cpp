#include "simulator/accessory_mcu.h"

#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/mcu_memory.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::uint32_t modeMask = 0xFF;
constexpr std::uint32_t oneStart = 0x100;

constexpr std::uint32_t nextRun(std::uint32_t run, McuMode mode)
{
    return ((run & ~modeMask) + oneStart) | static_cast<std::uint32_t>(mode);
}

} // namespace

void AccessoryMcu::restore()
{
    const Accessory &kvane = *findAccessory(ACCESSORY_KVANE);
    McuMemory(state.bootLoader).restore(makeFirmwareImage({kvane.mcuMajor, kvane.mcuMinor, kvane.mcuPatch}));
    enter({McuMode::Firmware, {}}); // not plugged in, so there is no version for the EC
}

void AccessoryMcu::powerUp()
{
    const bool held = (controlByte() & MCU_RESET_PULSE) != 0;
    enter(held ? Start {McuMode::HeldInReset, {}} : startAfterReset());
}

void AccessoryMcu::applyControlByte()
{
    if (!isConnected())
        return;
    if ((controlByte() & MCU_RESET_PULSE) != 0)
        enter({McuMode::HeldInReset, {}});
    else if (mode() == McuMode::HeldInReset)
        enter(startAfterReset());
}

McuMode AccessoryMcu::mode() const
{
    return static_cast<McuMode>(run() & modeMask);
}

bool AccessoryMcu::isInBootLoader() const
{
    return isConnected() && mode() == McuMode::BootLoader;
}

void AccessoryMcu::startFirmware(std::uint32_t ofRun)
{
    leave(ofRun, startOfFirmware());
}

void AccessoryMcu::leaveForNothing(std::uint32_t ofRun)
{
    leave(ofRun, {McuMode::NoFirmware, FirmwareVersion {}});
}

void AccessoryMcu::restart(std::uint32_t ofRun)
{
    leave(ofRun, startAfterReset());
}

bool AccessoryMcu::isConnected() const
{
    return linkedAccessory(state) == ACCESSORY_KVANE;
}

std::uint8_t AccessoryMcu::controlByte() const
{
    return state.xdata[EC_MCU_UPDATE_CTRL].load();
}

AccessoryMcu::Start AccessoryMcu::startAfterReset() const
{
    constexpr std::uint8_t bootBits = MCU_UPDATE_ON | MCU_BOOT_LOADER_SELECT;
    return (controlByte() & bootBits) == bootBits ? Start {McuMode::BootLoader, {}} : startOfFirmware();
}

// Without a firmware the version is 0.0.0; the link status does not depend on the firmware.
AccessoryMcu::Start AccessoryMcu::startOfFirmware() const
{
    const auto version = findFirmware(McuMemory(state.bootLoader).flash());
    return {version ? McuMode::Firmware : McuMode::NoFirmware, version.value_or(FirmwareVersion {})};
}

void AccessoryMcu::report(const Start &start)
{
    if (!start.version)
        return;
    state.xdata[MCU_VERSION_MAJOR].store(start.version->major);
    state.xdata[MCU_VERSION_MINOR].store(start.version->minor);
    state.xdata[MCU_VERSION_PATCH].store(start.version->patch);
}

void AccessoryMcu::enter(const Start &next)
{
    std::uint32_t before = run();
    while (!state.bootLoader.run.compare_exchange_weak(before, nextRun(before, next.mode))) { }
    report(next);
}

// Does nothing when a reset has ended that run in the meantime.
void AccessoryMcu::leave(std::uint32_t ofRun, const Start &next)
{
    std::uint32_t expected = ofRun;
    if (state.bootLoader.run.compare_exchange_strong(expected, nextRun(ofRun, next.mode)))
        report(next);
}

} // namespace tarnSimulator
