#include "simulator/register_table.h"

#include "device/ec_registers.h"
#include "simulator/value_text.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

using enum HostWrites;
using enum ValueGroup;
using enum ValueSetting;

// All that the simulated computer knows of a register, but for what reads and writes of it set off:
// register_file has that.
constexpr Register registers[] = {
    {"EEP_DATA", EEP_DATA},
    {"EEP_STATUS", EEP_STATUS, Ignored, EEP_STATUS_DONE},
    {"EEP_CMD", EEP_CMD},
    {"EEP_ADDR_LO", EEP_ADDR_LO},
    {"EEP_ADDR_HI", EEP_ADDR_HI},
    {"EEP_LEN", EEP_LEN},

    {"MCU_LINK_STATUS", MCU_LINK_STATUS, Ignored, 0,
        {"link-status", Accessory, Byte, "link status; 4: linked"}},
    {"ACCESSORY_CODE", ACCESSORY_CODE, Ignored, 0,
        {"accessory-code", Accessory, Byte, "code of the attached accessory"}},
    {"HARDWARE_VERSION", HARDWARE_VERSION, Ignored, 0,
        {"hardware-version", Accessory, Byte, "hardware version of the accessory"}},
    {"MCU_VERSION_MAJOR", MCU_VERSION_MAJOR, Ignored, 0,
        {"mcu-major", Accessory, Byte, "MCU version of the accessory, first field"}},
    {"MCU_VERSION_MINOR", MCU_VERSION_MINOR, Ignored, 0,
        {"mcu-minor", Accessory, Byte, "MCU version of the accessory, second field"}},
    {"MCU_VERSION_PATCH", MCU_VERSION_PATCH, Ignored, 0,
        {"mcu-patch", Accessory, Byte, "MCU version of the accessory, third field"}},

    {"XEC_APP_CMD", XEC_APP_CMD},
    {"XEC_RGB_CMD", XEC_RGB_CMD},
    {"XEC_APP_CMD_DATA0", XEC_APP_CMD_DATA0},
    {"XEC_RGB_RED", XEC_RGB_RED},
    {"KVANE_SN_BYTES", KVANE_SN_BYTES},
    {"XEC_RGB_GREEN", XEC_RGB_GREEN},
    {"XEC_RGB_BLUE", XEC_RGB_BLUE},

    {"XEC_APP_EVENT", XEC_APP_EVENT},
    {"XEC_APP_EVENT_DATA", XEC_APP_EVENT_DATA},

    {"EC_POWER_SUPPLY_MODE", EC_POWER_SUPPLY_MODE, Ignored, 0,
        {"supply-mode", Power, Byte, "power supply mode; 0 to 3 select the limit sets"}},
    {"EC_TARN_POWER_MODE", EC_TARN_POWER_MODE, Kept, TARN_POWER_MODE_BALANCE,
        {"power-mode", Power, Byte, "device power mode: the flag of a power profile"}},
    {"EC_POWERMODE_PL_CTRL", EC_POWERMODE_PL_CTRL, Kept, 0,
        {"pl-control", Limits, Byte, "power control; 0 auto, 1 manual, 2 unlimited"}},
    {"EC_POWERMODE_PL1", EC_POWERMODE_PL1},
    {"EC_POWERMODE_PL2", EC_POWERMODE_PL2},
    {"EC_POWERMODE_PL4", EC_POWERMODE_PL4},
    {"EC_POWERMODE_PL1_CHECK", EC_POWERMODE_PL1_CHECK, Ignored, 0,
        {"pl1", Limits, Nothing, "power limit PL1 in force, W"}},
    {"EC_POWERMODE_PL2_CHECK", EC_POWERMODE_PL2_CHECK, Ignored, 0,
        {"pl2", Limits, Nothing, "power limit PL2 in force, W"}},
    {"EC_POWERMODE_PL4_CHECK", EC_POWERMODE_PL4_CHECK, Ignored, 0,
        {"pl4", Limits, Nothing, "power limit PL4 in force, W"}},
    {"EC_FAN_MODE", EC_FAN_MODE, Kept, 0, {"fan-mode", Limits, Nothing, "fan mode; 0 quiet, 1 fast"}},

    {"EC_TARN_BATTERY_NUM", EC_TARN_BATTERY_NUM, Ignored, 80,
        {"battery", HostBattery, Byte, "host battery level"}},
    {"EC_TARN_CHARGING_STATUS", EC_TARN_CHARGING_STATUS, Ignored, TARN_CHARGING_BIT,
        {"charging", HostBattery, Switch, "host charging status; bit 0: charging", TARN_CHARGING_BIT}},
    {"EC_KVANE_BATTERY_NUM", EC_KVANE_BATTERY_NUM, Ignored, 60,
        {"kvane-battery", Kvane, Byte, "KVane battery level"}},
    {"EC_KVANE_CHARGING_STATUS", EC_KVANE_CHARGING_STATUS, Ignored, 0,
        {"kvane-charging", Kvane, Switch, "KVane charging status; bit 1: charging", KVANE_CHARGING_BIT}},

    {"EC_MCU_UPDATE_CTRL", EC_MCU_UPDATE_CTRL, Kept, 0,
        {"mcu-update", McuUpdate, Nothing, "MCU update control; 0x20 update, 0x08 boot loader, 0x10 reset"}},
};

constexpr bool isOnlyAName(const Register &row)
{
    return row.hostWrites == Kept && row.atPowerOn == 0 && row.value.name.empty();
}

// Whether `later` may follow `row` in the table.
constexpr bool agree(const Register &row, const Register &later)
{
    const bool sameValue = !row.value.name.empty() && row.value.name == later.value.name;
    const bool sameAddress = row.address == later.address;
    return row.name != later.name && !sameValue && (!sameAddress || isOnlyAName(later));
}

constexpr bool rowsAgree()
{
    for (const Register *row = std::begin(registers); row != std::end(registers); ++row) {
        const bool agrees = std::all_of(
            row + 1, std::end(registers), [row](const Register &later) { return agree(*row, later); });
        if (!agrees)
            return false;
    }
    return true;
}
static_assert(rowsAgree(), "a name stands twice, or a further row of an address tells more than the name");

constexpr bool isSound(const RegisterValue &value)
{
    return (value.setting == Switch) == (value.onValue != 0) && value.name.empty() == value.help.empty();
}
static_assert(std::all_of(std::begin(registers), std::end(registers),
                  [](const Register &row) { return isSound(row.value); }),
    "a switch has no bit, another value has one, or a value has no name or help");

} // namespace

std::span<const Register> registerTable()
{
    return registers;
}

const Register *findRegister(std::uint16_t address)
{
    const auto found = std::find_if(std::begin(registers), std::end(registers),
        [address](const Register &row) { return row.address == address; });
    return found == std::end(registers) ? nullptr : found;
}

std::string registerName(std::uint16_t address)
{
    if (const Register *known = findRegister(address))
        return std::string(known->name);
    if (address > KVANE_SN_BYTES && address < KVANE_SN_BYTES + KVANE_SN_LENGTH)
        return "KVANE_SN_BYTES+" + std::to_string(address - KVANE_SN_BYTES);
    return {};
}

std::string addressText(std::uint16_t address)
{
    const std::string name = registerName(address);
    return hexText(address, 4) + (name.empty() ? name : " " + name);
}

std::optional<std::uint16_t> registerAddress(std::string_view name)
{
    const auto found = std::find_if(
        std::begin(registers), std::end(registers), [name](const Register &row) { return row.name == name; });
    if (found == std::end(registers))
        return std::nullopt;
    return found->address;
}

} // namespace tarnSimulator
