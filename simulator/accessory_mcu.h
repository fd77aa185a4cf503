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
    NoFirmware, // started, but there is nothing sensible in the flash
};

// The MCU of the KVane and what the EC does to it. What runs is decided when reset ends: with both bits set
// the boot loader, else the firmware in the flash, whose version the EC then reports.
class AccessoryMcu
{
public:
    explicit AccessoryMcu(MachineState &machine)
        : state(machine)
    { }

    // Factory condition: a firmware of the version that the KVane has in the accessory catalog.
    void restore();
    // The connector has given it power.
    void powerUp();
    // The control byte has been written. Without a KVane nobody is there to be reset.
    void obeyControlByte();

    [[nodiscard]] McuMode mode() const;
    // Another value after each start.
    [[nodiscard]] std::uint32_t run() const { return state.bootLoader.run.load(); }
    // Is there a boot loader at the other end of the serial line?
    [[nodiscard]] bool isInBootLoader() const;

    // What the boot loader of that run does last. Nothing happens when it has been reset in the meantime.
    void startFirmware(std::uint32_t ofRun);
    void leaveForNothing(std::uint32_t ofRun);
    void restart(std::uint32_t ofRun);

private:
    // What begins to run, and the version that it tells the EC; without one the EC keeps that of before.
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
