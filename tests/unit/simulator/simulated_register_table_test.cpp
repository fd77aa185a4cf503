#include "ec_host.h"

#include "simulator/register_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>

using namespace tarnDeviceInfos;
using tarnSimulator::HostWrites;
using tarnSimulatorTest::EcHost;

namespace {

// Once more, so that a wrong row of the table is noticed: what the service relies on to be the EC's alone ...
const std::set<std::uint16_t> ignoringTheHost {EEP_STATUS, MCU_LINK_STATUS, MCU_VERSION_MAJOR,
    MCU_VERSION_MINOR, MCU_VERSION_PATCH, ACCESSORY_CODE, HARDWARE_VERSION, EC_POWERMODE_PL1_CHECK,
    EC_POWERMODE_PL2_CHECK, EC_POWERMODE_PL4_CHECK, EC_POWER_SUPPLY_MODE, EC_TARN_BATTERY_NUM,
    EC_TARN_CHARGING_STATUS, EC_KVANE_BATTERY_NUM, EC_KVANE_CHARGING_STATUS};

// ... and what is not 0 at power-on.
const std::map<std::uint16_t, int> atPowerOn {{EEP_STATUS, 1}, {EC_TARN_BATTERY_NUM, 80},
    {EC_TARN_CHARGING_STATUS, 1}, {EC_KVANE_BATTERY_NUM, 60}, {EC_TARN_POWER_MODE, 1}, {EC_POWERMODE_PL1, 28},
    {EC_POWERMODE_PL2, 30}, {EC_POWERMODE_PL4, 55}, {EC_POWERMODE_PL1_CHECK, 28},
    {EC_POWERMODE_PL2_CHECK, 30}, {EC_POWERMODE_PL4_CHECK, 55}};

// The xdata registers of the header: those are the constants with a four-digit address, and further names of
// these.
std::map<std::string, std::uint16_t> registersOfHeader()
{
    std::ifstream stream(TARN_EC_REGISTERS_HEADER);
    const std::string header((std::istreambuf_iterator<char>(stream)), {});
    const std::regex constant("constexpr std::uint16_t (\\w+) = (?:(0x[0-9A-F]{4})|([A-Z]\\w+));");
    std::map<std::string, std::uint16_t> registers;
    for (std::sregex_iterator found(header.begin(), header.end(), constant), end; found != end; ++found) {
        const std::smatch &match = *found;
        registers[match[1]] = match[2].matched ? static_cast<std::uint16_t>(std::stoul(match[2], nullptr, 16))
                                               : registers.at(match[3]);
    }
    return registers;
}

} // namespace

TEST(SimulatedRegisterTable, HasTheRegistersOfTheHeader)
{
    std::map<std::string, std::uint16_t> inTable;
    for (const auto &row : tarnSimulator::registerTable())
        inTable[std::string(row.name)] = row.address;
    EXPECT_EQ(inTable, registersOfHeader());
    EXPECT_GT(inTable.size(), 30U);
}

TEST(SimulatedRegisterTable, SaysWhichRegistersTheHostCannotWrite)
{
    for (const std::uint16_t address : ignoringTheHost) {
        const tarnSimulator::Register *row = tarnSimulator::findRegister(address);
        ASSERT_NE(row, nullptr) << address;
        EXPECT_EQ(row->hostWrites, HostWrites::Ignored) << row->name;
    }
    for (const auto &row : tarnSimulator::registerTable()) {
        // Of several names of an address the first tells it.
        const bool ignored = tarnSimulator::findRegister(row.address)->hostWrites == HostWrites::Ignored;
        EcHost host;
        host.computer.poke(row.address, 33);
        ASSERT_TRUE(host.write(row.address, 99)) << row.name;
        // Not read by the host, because a read finishes what the write has started.
        EXPECT_EQ(host.computer.peek(row.address), ignored ? 33 : 99) << row.name;
    }
}

TEST(SimulatedRegisterTable, SaysWhatTheRegistersHoldAtPowerOn)
{
    EcHost host;
    const auto expectAllAsAtPowerOn = [&host] {
        for (int address = 0; address < static_cast<int>(tarnSimulator::xdataSize); ++address) {
            const auto at = static_cast<std::uint16_t>(address);
            const auto known = atPowerOn.find(at);
            EXPECT_EQ(host.computer.peek(at), known == atPowerOn.end() ? 0 : known->second) << address;
        }
    };
    expectAllAsAtPowerOn();
    for (const auto &row : tarnSimulator::registerTable())
        host.computer.poke(row.address, 99);
    host.computer.reset();
    expectAllAsAtPowerOn();
}

TEST(SimulatedRegisterTable, EveryNameLeadsToItsAddressAndBack)
{
    for (const auto &row : tarnSimulator::registerTable()) {
        EXPECT_EQ(tarnSimulator::registerAddress(row.name), row.address);
        const std::string name = tarnSimulator::registerName(row.address);
        EXPECT_EQ(tarnSimulator::registerAddress(name), row.address);
    }
    EXPECT_EQ(tarnSimulator::registerName(XEC_APP_CMD), "XEC_APP_CMD");
    EXPECT_EQ(tarnSimulator::registerName(XEC_RGB_GREEN), "XEC_RGB_GREEN");
    EXPECT_EQ(tarnSimulator::registerName(KVANE_SN_BYTES + 3), "KVANE_SN_BYTES+3");
    EXPECT_EQ(tarnSimulator::registerName(KVANE_SN_BYTES + 6), "KVANE_SN_BYTES+6");
    EXPECT_EQ(tarnSimulator::registerName(KVANE_SN_BYTES + 7), "");
    EXPECT_EQ(tarnSimulator::registerAddress("NO_SUCH_REGISTER"), std::nullopt);
}
