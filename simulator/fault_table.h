#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarnSimulator {

// Order and numbers are those of the fault slots in the state file: add at the end only.
enum class Fault : std::uint8_t {
    IbfStuck,
    ObfStuck,
    NoAnswer,
    Slow,
    MailboxStuck,
    EepromBusy,
    EepromError,
    ReadbackOffset,
    FailRegister,
    FailRead,
    FailWrite,
    FailAfter,
    FailDeviceList,
    FailDeviceDescription,
    FailDeviceHardwareId,
    FailDeviceId,
    FailDeviceStatus,
    FailDeviceEnable,
    FailDeviceDisable,
    FailDeviceInstaller,
    NoConsoleSession,
    NoUserToken,
    NoTokenCopy,
    NoGuiProcess,
    NoGuiExitCode,
    FlashSilent,
    FlashWriteRefused,
    FlashCorrupt,
    FlashUnplugged,
    FlashGoRefused,
    FlashInitNoise,
};

inline constexpr std::size_t faultCount = 31;

enum class FaultValue : std::uint8_t {
    None, // on or off
    Number, // has a default, so that "on" is enough
    Count, // a number that must be given
    Register, // a register address that must be given, and how many accesses succeed before
    Device, // every device or the slot of one, and how many calls succeed before
};

inline constexpr std::int32_t everyDevice = -1;

struct FaultDescription
{
    Fault fault;
    std::string_view name;
    FaultValue kind;
    std::string_view unit;
    std::int32_t minimum;
    std::int32_t maximum;
    std::int32_t onValue; // for plain "on"
    std::string_view help;
};

using FaultTable = std::array<FaultDescription, faultCount>;

[[nodiscard]] const FaultTable &faultTable();
[[nodiscard]] const FaultDescription &describe(Fault fault);
// Null when there is no fault of that name.
[[nodiscard]] const FaultDescription *findFault(std::string_view name);

} // namespace tarnSimulator
