#include "ec_host.h"

#include "simulator/machine_values.h"
#include "simulator/register_table.h"
#include "simulator/value_text.h"

#include <gtest/gtest.h>

#include <set>

using namespace tarnDeviceInfos;
using tarnSimulator::Colour;
using tarnSimulatorTest::EcHost;

TEST(SimulatedValueText, Numbers)
{
    EXPECT_EQ(tarnSimulator::parseNumber("0"), 0);
    EXPECT_EQ(tarnSimulator::parseNumber("010"), 10);
    EXPECT_EQ(tarnSimulator::parseNumber("0x1f"), 31);
    EXPECT_EQ(tarnSimulator::parseNumber("0XFF"), 255);
    EXPECT_EQ(tarnSimulator::parseNumber("-11"), -11);
    for (const char *wrong : {"", "-", "0x", "12a", " 1", "1 ", "+1", "--1", "0x-1", "99999999999"})
        EXPECT_EQ(tarnSimulator::parseNumber(wrong), std::nullopt) << wrong;
    EXPECT_EQ(tarnSimulator::parseByte("255"), 255);
    EXPECT_EQ(tarnSimulator::parseByte("256"), std::nullopt);
    EXPECT_EQ(tarnSimulator::parseByte("-1"), std::nullopt);
}

TEST(SimulatedValueText, Colours)
{
    EXPECT_EQ(tarnSimulator::parseColour("230,0,18"), (Colour {230, 0, 18}));
    EXPECT_EQ(tarnSimulator::colourText({230, 0, 18}), "230,0,18");
    EXPECT_EQ(Colour::fromWord((Colour {1, 2, 3}).toWord()), (Colour {1, 2, 3}));
    for (const char *wrong : {"", "1", "1,2", "1,2,", "1,2,256", "1,2,3,4", "red"})
        EXPECT_EQ(tarnSimulator::parseColour(wrong), std::nullopt) << wrong;
}

TEST(SimulatedValueText, SerialNumberIsPrintedLastByteFirst)
{
    const tarnSimulator::SerialNumber bytes {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD};
    EXPECT_EQ(tarnSimulator::serialNumberText(bytes), "CDAB8967452301");
    EXPECT_EQ(tarnSimulator::parseSerialNumber("CDAB8967452301"), bytes);
    EXPECT_EQ(tarnSimulator::parseSerialNumber("cdab8967452301"), bytes);
    for (const char *wrong : {"", "CDAB896745230", "CDAB89674523011", "CDAB896745230G", "CDAB8967-45230"})
        EXPECT_EQ(tarnSimulator::parseSerialNumber(wrong), std::nullopt) << wrong;
}

TEST(SimulatedValues, NamesAreDistinctAndFound)
{
    std::set<std::string_view> names;
    for (const auto &value : tarnSimulator::machineValues()) {
        EXPECT_EQ(tarnSimulator::findMachineValue(value.name), &value);
        EXPECT_EQ(value.write == nullptr, value.allowed.empty()) << value.name;
        names.insert(value.name);
    }
    EXPECT_EQ(names.size(), tarnSimulator::machineValues().size());
    EXPECT_EQ(tarnSimulator::findMachineValue("no-such-value"), nullptr);
}

TEST(SimulatedValues, WhatIsSetIsReadBackAndNonsenseIsRefused)
{
    EcHost host;
    int settable = 0;
    for (const auto &value : tarnSimulator::machineValues()) {
        if (value.write == nullptr)
            continue;
        ++settable;
        const bool isColour = value.allowed.starts_with("RED");
        const bool isSerialNumber = value.allowed.starts_with("14");
        const bool isSession = value.name == "session";
        const std::string text = isColour ? "7,8,9"
            : isSerialNumber              ? "00112233445566"
            : isSession                   ? "service"
                                          : "17";
        EXPECT_TRUE(value.write(host.computer, text)) << value.name;
        EXPECT_EQ(value.read(host.computer), text) << value.name;
        EXPECT_FALSE(value.write(host.computer, "nonsense")) << value.name;
        EXPECT_FALSE(value.write(host.computer, "-1")) << value.name;
        EXPECT_FALSE(value.write(host.computer, "1000001")) << value.name;
        EXPECT_EQ(value.read(host.computer), text) << value.name;
    }
    EXPECT_GT(settable, 15);
}

TEST(SimulatedValues, OfARegisterAreWhatItHolds)
{
    EcHost host;
    int ofRegisters = 0;
    for (const auto &row : tarnSimulator::registerTable()) {
        if (row.value.name.empty())
            continue;
        ++ofRegisters;
        host.computer.poke(row.address, 91);
        const auto *value = tarnSimulator::findMachineValue(row.value.name);
        ASSERT_NE(value, nullptr) << row.name;
        EXPECT_EQ(value->read(host.computer), "91") << row.name;
        if (value->write != nullptr) {
            ASSERT_TRUE(value->write(host.computer, "0x5C")) << row.name;
            EXPECT_EQ(host.computer.peek(row.address), 0x5C) << row.name;
        }
    }
    EXPECT_GT(ofRegisters, 15);
}

TEST(SimulatedValues, SwitchesTakeOnAndOff)
{
    EcHost host;
    const auto set = [&host](const char *name, const char *text) {
        return tarnSimulator::findMachineValue(name)->write(host.computer, text);
    };
    ASSERT_TRUE(set("kvane-charging", "on"));
    EXPECT_EQ(host.computer.peek(EC_KVANE_CHARGING_STATUS), KVANE_CHARGING_BIT);
    ASSERT_TRUE(set("kvane-charging", "off"));
    EXPECT_EQ(host.computer.peek(EC_KVANE_CHARGING_STATUS), 0);
    ASSERT_TRUE(set("charging", "off"));
    EXPECT_EQ(host.computer.peek(EC_TARN_CHARGING_STATUS), 0);
    ASSERT_TRUE(set("charging", "on"));
    EXPECT_EQ(host.computer.peek(EC_TARN_CHARGING_STATUS), TARN_CHARGING_BIT);

    const auto *smartCharging = tarnSimulator::findMachineValue("smart-charging");
    ASSERT_TRUE(set("smart-charging", "off"));
    EXPECT_EQ(host.computer.peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_OFF);
    EXPECT_EQ(smartCharging->read(host.computer), "off");
    ASSERT_TRUE(set("smart-charging", "on"));
    EXPECT_EQ(host.computer.peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_ON);
    EXPECT_EQ(smartCharging->read(host.computer), "on");
}

TEST(SimulatedValues, GpuReportsAreShown)
{
    constexpr std::uint8_t active = GPU_PRESENT | GPU_DRIVER_INSTALLED | GPU_STARTED;
    EcHost host;
    ASSERT_TRUE(host.write(XEC_APP_CMD_DATA0, active));
    ASSERT_TRUE(host.write(XEC_APP_CMD, APP_CMD_PEG_STATE));
    EXPECT_EQ(tarnSimulator::findMachineValue("gpu-state")->read(host.computer), "7");
    EXPECT_EQ(tarnSimulator::findMachineValue("gpu-reports")->read(host.computer), "1");
}

TEST(PrintableText, HasNoControlCharacters)
{
    EXPECT_EQ(tarnSimulator::printable("plain text, \xc3\xa4 and \xe2\x82\xac"),
        "plain text, \xc3\xa4 and \xe2\x82\xac");
    EXPECT_EQ(tarnSimulator::printable(""), "");
    EXPECT_EQ(tarnSimulator::printable("\x1b[31mred\x07"), "\\x1B[31mred\\x07");
    EXPECT_EQ(tarnSimulator::printable("two\nlines\t\x7f"), "two\\x0Alines\\x09\\x7F");
    EXPECT_EQ(tarnSimulator::printable("\xc2\x9b\x31m"), "\\xC2\\x9B1m"); // U+009B begins a sequence, too
    EXPECT_EQ(tarnSimulator::printable("\xc2\xa0\xc2"), "\xc2\xa0\xc2");
}
