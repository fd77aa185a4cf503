#include "simulator/accessory_mcu.h"

#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/mcu_memory.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::uint32_t MODE_MASK = 0xFF;
constexpr std::uint32_t ONE_START = 0x100;

constexpr std::uint32_t nextRun(std::uint32_t run, McuMode mode)
{
    return ((run & ~MODE_MASK) + ONE_START) | static_cast<std::uint32_t>(mode);
}

} // namespace

void AccessoryMcu::restore()
{
    const Accessory &kvane = *findAccessory(ACCESSORY_KVANE);
    McuMemory(state.bootLoader).restore(makeFirmwareImage({kvane.mcuMajor, kvane.mcuMinor, kvane.mcuPatch}));
    enter(McuMode::Firmware);
}

void AccessoryMcu::powerUp()
{
    const bool held = (controlByte() & MCU_RESET_PULSE) != 0;
    enter(held ? McuMode::HeldInReset : modeAfterReset());
}

void AccessoryMcu::obeyControlByte()
{
    if (!isConnected()) {
        return;
    }
    if ((controlByte() & MCU_RESET_PULSE) != 0) {
        enter(McuMode::HeldInReset);
    } else if (mode() == McuMode::HeldInReset) {
        enter(modeAfterReset());
    }
}

McuMode AccessoryMcu::mode() const
{
    return static_cast<McuMode>(run() & MODE_MASK);
}

bool AccessoryMcu::isInBootLoader() const
{
    return isConnected() && mode() == McuMode::BootLoader;
}

void AccessoryMcu::startFirmware(std::uint32_t ofRun)
{
    leave(ofRun, bootFirmware());
}

void AccessoryMcu::leaveForNothing(std::uint32_t ofRun)
{
    reportVersion({});
    leave(ofRun, McuMode::NoFirmware);
}

void AccessoryMcu::restart(std::uint32_t ofRun)
{
    leave(ofRun, modeAfterReset());
}

bool AccessoryMcu::isConnected() const
{
    return state.xdata[MCU_LINK_STATUS].load() == MCU_LINKED
        && state.xdata[ACCESSORY_CODE].load() == ACCESSORY_KVANE;
}

std::uint8_t AccessoryMcu::controlByte() const
{
    return state.xdata[EC_MCU_UPDATE_CTRL].load();
}

McuMode AccessoryMcu::modeAfterReset()
{
    constexpr std::uint8_t BOOT_BITS = MCU_UPDATE_ON | MCU_BOOT_LOADER_SELECT;
    return (controlByte() & BOOT_BITS) == BOOT_BITS ? McuMode::BootLoader : bootFirmware();
}

// Without a firmware there is nobody to tell a version; the link is not the MCU's affair.
McuMode AccessoryMcu::bootFirmware()
{
    const auto version = findFirmware(McuMemory(state.bootLoader).flash());
    reportVersion(version.value_or(FirmwareVersion {}));
    return version ? McuMode::Firmware : McuMode::NoFirmware;
}

void AccessoryMcu::reportVersion(FirmwareVersion version)
{
    state.xdata[MCU_VERSION_MAJOR].store(version.major);
    state.xdata[MCU_VERSION_MINOR].store(version.minor);
    state.xdata[MCU_VERSION_PATCH].store(version.patch);
}

void AccessoryMcu::enter(McuMode next)
{
    std::uint32_t before = run();
    while (!state.bootLoader.run.compare_exchange_weak(before, nextRun(before, next))) { }
}

void AccessoryMcu::leave(std::uint32_t ofRun, McuMode next)
{
    std::uint32_t expected = ofRun;
    static_cast<void>(state.bootLoader.run.compare_exchange_strong(expected, nextRun(ofRun, next)));
}

} // namespace tarnSimulator
