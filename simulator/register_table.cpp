#include "simulator/register_names.h"

#include "device/ec_registers.h"

#include <algorithm>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

// The first name of an address is the one that is shown.
constexpr RegisterName names[] = {
    {"EC_FAN_MODE", EC_FAN_MODE},
    {"XEC_APP_EVENT", XEC_APP_EVENT},
    {"XEC_APP_EVENT_DATA", XEC_APP_EVENT_DATA},
    {"EC_POWERMODE_PL_CTRL", EC_POWERMODE_PL_CTRL},
    {"EC_POWERMODE_PL1", EC_POWERMODE_PL1},
    {"EC_POWERMODE_PL2", EC_POWERMODE_PL2},
    {"EC_POWERMODE_PL4", EC_POWERMODE_PL4},
    {"EC_POWERMODE_PL1_CHECK", EC_POWERMODE_PL1_CHECK},
    {"EC_POWERMODE_PL2_CHECK", EC_POWERMODE_PL2_CHECK},
    {"EC_POWERMODE_PL4_CHECK", EC_POWERMODE_PL4_CHECK},
    {"XEC_APP_CMD", XEC_APP_CMD},
    {"XEC_RGB_CMD", XEC_RGB_CMD},
    {"XEC_APP_CMD_DATA0", XEC_APP_CMD_DATA0},
    {"XEC_RGB_RED", XEC_RGB_RED},
    {"KVANE_SN_BYTES", KVANE_SN_BYTES},
    {"XEC_RGB_GREEN", XEC_RGB_GREEN},
    {"XEC_RGB_BLUE", XEC_RGB_BLUE},
    {"EC_POWER_SUPPLY_MODE", EC_POWER_SUPPLY_MODE},
    {"EC_TARN_POWER_MODE", EC_TARN_POWER_MODE},
    {"EC_TARN_BATTERY_NUM", EC_TARN_BATTERY_NUM},
    {"EC_TARN_CHARGING_STATUS", EC_TARN_CHARGING_STATUS},
    {"EEP_DATA", EEP_DATA},
    {"EEP_STATUS", EEP_STATUS},
    {"EEP_CMD", EEP_CMD},
    {"EEP_ADDR_LO", EEP_ADDR_LO},
    {"EEP_ADDR_HI", EEP_ADDR_HI},
    {"EEP_LEN", EEP_LEN},
    {"MCU_LINK_STATUS", MCU_LINK_STATUS},
    {"MCU_VERSION_MINOR", MCU_VERSION_MINOR},
    {"MCU_VERSION_PATCH", MCU_VERSION_PATCH},
    {"ACCESSORY_CODE", ACCESSORY_CODE},
    {"HARDWARE_VERSION", HARDWARE_VERSION},
    {"EC_MCU_UPDATE_CTRL", EC_MCU_UPDATE_CTRL},
    {"MCU_VERSION_MAJOR", MCU_VERSION_MAJOR},
    {"EC_KVANE_CHARGING_STATUS", EC_KVANE_CHARGING_STATUS},
    {"EC_KVANE_BATTERY_NUM", EC_KVANE_BATTERY_NUM},
};

} // namespace

std::span<const RegisterName> registerNames()
{
    return names;
}

std::string registerName(std::uint16_t address)
{
    const auto found = std::find_if(std::begin(names), std::end(names),
        [address](const RegisterName &row) { return row.address == address; });
    if (found != std::end(names))
        return std::string(found->name);
    if (address > KVANE_SN_BYTES && address < KVANE_SN_BYTES + KVANE_SN_LENGTH)
        return "KVANE_SN_BYTES+" + std::to_string(address - KVANE_SN_BYTES);
    return {};
}

std::optional<std::uint16_t> registerAddress(std::string_view name)
{
    const auto found = std::find_if(
        std::begin(names), std::end(names), [name](const RegisterName &row) { return row.name == name; });
    if (found == std::end(names))
        return std::nullopt;
    return found->address;
}

} // namespace tarnSimulator
