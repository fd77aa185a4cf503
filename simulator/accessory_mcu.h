#pragma once

#include "simulator/firmware_image.h"
#include "simulator/machine_state.h"

#include <cstdint>
#include <optional>

namespace tarnSimulator {

enum class McuMode : std::uint8_t {
    Firmware,
    BootLoader,
    HeldInReset,
    NoFirmware, // started without a valid firmware in the flash
};

// The MCU of the KVane and what the EC does to it. The end of a reset decides what runs: the boot loader when
// MCU_UPDATE_ON and MCU_BOOT_LOADER_SELECT are set, else the firmware in the flash, whose version the EC then
// reports.
class AccessoryMcu
{
public:
    explicit AccessoryMcu(MachineState &machine)
        : state(machine)
    { }

    // Factory condition: a firmware of the version that the KVane has in the accessory catalog.
    void restore();
    // To be called when the KVane gets power, because it has been attached.
    void powerUp();
    // To be called when EC_MCU_UPDATE_CTRL has been written. Without a KVane nothing happens.
    void applyControlByte();

    [[nodiscard]] McuMode mode() const;
    // Another value after each start.
    [[nodiscard]] std::uint32_t run() const { return state.bootLoader.run.load(); }
    // True when a boot loader is at the other end of the serial line.
    [[nodiscard]] bool isInBootLoader() const;

    // How the boot loader of that run ends; leaveForNothing() starts an address without a firmware. Nothing
    // happens when the MCU has been reset in the meantime.
    void startFirmware(std::uint32_t ofRun);
    void leaveForNothing(std::uint32_t ofRun);
    void restart(std::uint32_t ofRun);

private:
    // What starts, and the version that it reports to the EC; without one the EC keeps the one it has.
    struct Start
    {
        McuMode mode;
        std::optional<FirmwareVersion> version;
    };

    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] std::uint8_t controlByte() const;
    [[nodiscard]] Start startAfterReset() const;
    [[nodiscard]] Start startOfFirmware() const;
    void report(const Start &start);
    void enter(const Start &next);
    void leave(std::uint32_t ofRun, const Start &next);

    MachineState &state;
};

} // namespace tarnSimulator
