#include "device/ec_registers.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

using namespace tarnDeviceInfos;

namespace {

struct RegisterRow
{
    const char *name;
    int value; // as the header has it
    int expected; // as the EC has it
};

#define ROW(name, expected)                                                                                  \
    RegisterRow                                                                                              \
    {                                                                                                        \
#name, name, expected                                                                                \
    }

// The driver and the simulated EC share the header, so a wrong value in it would be wrong on both sides and
// show in no other test. Here each is written down once more.
constexpr RegisterRow rows[] = {
    ROW(EC_DATA_PORT, 0x68),
    ROW(EC_CMD_STATUS_PORT, 0x6C),
    ROW(OBF, 0x01),
    ROW(IBF, 0x02),
    ROW(XDATA_READ_CMD, 0x92),
    ROW(XDATA_WRITE_CMD, 0x93),

    ROW(EEP_DATA, 0x0620),
    ROW(EEP_STATUS, 0x0640),
    ROW(EEP_CMD, 0x0641),
    ROW(EEP_ADDR_LO, 0x0642),
    ROW(EEP_ADDR_HI, 0x0643),
    ROW(EEP_LEN, 0x0644),
    ROW(EEP_STATUS_BUSY, 0),
    ROW(EEP_STATUS_DONE, 1),
    ROW(EEP_CMD_READ, 1),
    ROW(EEP_CMD_WRITE, 2),

    ROW(EEP_SMART_CHARGING, 0x33),
    ROW(SMART_CHARGING_ON, 0x50),
    ROW(SMART_CHARGING_OFF, 0x00),

    ROW(MCU_LINK_STATUS, 0x06A0),
    ROW(MCU_LINKED, 4),
    ROW(MCU_VERSION_MINOR, 0x06A4),
    ROW(MCU_VERSION_PATCH, 0x06A5),
    ROW(ACCESSORY_CODE, 0x06A6),
    ROW(HARDWARE_VERSION, 0x06A7),
    ROW(MCU_VERSION_MAJOR, 0x06C2),
    ROW(ACCESSORY_NONE, 0),
    ROW(ACCESSORY_DOCK, 1),
    ROW(ACCESSORY_GRAPHICS, 2),
    ROW(ACCESSORY_GRAPHICS_16G, 3),
    ROW(ACCESSORY_KVANE, 4),

    ROW(XEC_APP_CMD, 0x04B0),
    ROW(XEC_APP_CMD_DATA0, 0x04B1),
    ROW(XEC_RGB_CMD, 0x04B0),
    ROW(XEC_RGB_RED, 0x04B1),
    ROW(XEC_RGB_GREEN, 0x04B2),
    ROW(XEC_RGB_BLUE, 0x04B3),
    ROW(KVANE_SN_BYTES, 0x04B1),
    ROW(KVANE_SN_LENGTH, 7),
    ROW(APP_CMD_PEG_STATE, 0x10),
    ROW(APP_EC_RGB_READ, 0x11),
    ROW(APP_EC_RGB_WRITE, 0x12),
    ROW(APP_EC_KVANE_SN_READ, 0x13),
    ROW(APP_EC_KVANE_LED_READ, 0x15),
    ROW(APP_EC_KVANE_LED_WRITE, 0x16),

    ROW(GPU_PRESENT, 0x01),
    ROW(GPU_DRIVER_INSTALLED, 0x02),
    ROW(GPU_STARTED, 0x04),

    ROW(XEC_APP_EVENT, 0x04A4),
    ROW(XEC_APP_EVENT_DATA, 0x04A5),
    ROW(APP_EVENT_NONE, 0x00),
    ROW(APP_EVENT_GPU_KEY, 0x11),
    ROW(APP_EVENT_GRAPHICS_CONNECTED, 0x12),
    ROW(APP_EVENT_BAN_GPU, 0x13),
    ROW(APP_EVENT_DATA_DISENGAGE, 0x04),

    ROW(EC_FAN_MODE, 0x046E),
    ROW(EC_POWERMODE_PL_CTRL, 0x04A7),
    ROW(EC_POWERMODE_PL1, 0x04A8),
    ROW(EC_POWERMODE_PL2, 0x04A9),
    ROW(EC_POWERMODE_PL4, 0x04AA),
    ROW(EC_POWERMODE_PL1_CHECK, 0x04AB),
    ROW(EC_POWERMODE_PL2_CHECK, 0x04AC),
    ROW(EC_POWERMODE_PL4_CHECK, 0x04AD),
    ROW(EC_POWER_SUPPLY_MODE, 0x04FC),
    ROW(EC_TARN_POWER_MODE, 0x04FE),
    ROW(PL_CTRL_AUTO, 0),
    ROW(PL_CTRL_MANUAL, 1),
    ROW(PL_CTRL_UNLIMITED, 2),
    ROW(TARN_POWER_MODE_BALANCE, 1),
    ROW(TARN_POWER_MODE_LOW, 2),
    ROW(TARN_POWER_MODE_HIGH, 4),
    ROW(TARN_POWER_MODE_UNKNOWN, 0x64),

    ROW(EC_TARN_BATTERY_NUM, 0x050F),
    ROW(EC_TARN_CHARGING_STATUS, 0x0570),
    ROW(EC_KVANE_CHARGING_STATUS, 0x06CC),
    ROW(EC_KVANE_BATTERY_NUM, 0x06CD),
    ROW(TARN_CHARGING_BIT, 0x01),
    ROW(KVANE_CHARGING_BIT, 0x02),

    ROW(EC_MCU_UPDATE_CTRL, 0x06C1),
    ROW(MCU_UPDATE_ON, 0x20),
    ROW(MCU_BOOT_LOADER_SELECT, 0x08),
    ROW(MCU_RESET_PULSE, 0x10),
};

#undef ROW

} // namespace

TEST(EcRegisters, HaveTheValuesOfTheEc)
{
    for (const RegisterRow &row : rows)
        EXPECT_EQ(row.value, row.expected) << row.name;
}

TEST(EcRegisters, AreAllInTheTable)
{
    std::ifstream stream(TARN_EC_REGISTERS_HEADER);
    const std::string header((std::istreambuf_iterator<char>(stream)), {});
    std::set<std::string> inHeader;
    const std::regex constant("constexpr std::uint\\d+_t (\\w+) =");
    for (std::sregex_iterator found(header.begin(), header.end(), constant), end; found != end; ++found)
        inHeader.insert((*found)[1]);
    EXPECT_GT(inHeader.size(), 80U);
    for (const RegisterRow &row : rows)
        EXPECT_EQ(inHeader.erase(row.name), 1U) << row.name << " is not in the header";
    EXPECT_EQ(inHeader, std::set<std::string>()) << "not in the table";
}
