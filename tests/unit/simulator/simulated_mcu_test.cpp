#include "serial_host.h"

#include "simulator/firmware_image.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using namespace tarnSimulatorTest;
using tarnSimulator::McuMode;

TEST(SimulatedMcu, RunsTheFirmwareOfTheCatalogAndIsSilent)
{
    SerialHost host;
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
    EXPECT_EQ(host.version(), 20005);
    EXPECT_EQ(host.send({0x7F}), silence);
}

TEST(SimulatedMcu, GoesIntoTheBootLoaderAsTheHostDoesItAndBack)
{
    SerialHost host;
    for (const int value : {0x20, 0x28, 0x38}) {
        ASSERT_TRUE(host.control(value));
        EXPECT_EQ(host.send({0x7F}), silence) << value;
    }
    EXPECT_EQ(host.computer.mcuMode(), McuMode::HeldInReset);
    ASSERT_TRUE(host.control(0x28));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::BootLoader);
    EXPECT_EQ(host.send({0x7F}), acked);
    EXPECT_EQ(host.version(), 20005); // the EC keeps what it has been told
    EXPECT_TRUE(host.computer.isAttached());

    ASSERT_TRUE(host.control(0x20));
    EXPECT_EQ(host.command(0x01).size(), 5U); // deselecting alone does nothing
    ASSERT_TRUE(host.control(0x30));
    EXPECT_EQ(host.command(0x01), silence);
    ASSERT_TRUE(host.control(0x20));
    ASSERT_TRUE(host.control(0x00));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
    EXPECT_EQ(host.send({0x7F}), silence);
}

TEST(SimulatedMcu, NeedsBothBitsAndAPulse)
{
    for (const int bits : {0x00, 0x08, 0x20, 0xD7 & ~MCU_RESET_PULSE}) {
        SerialHost host;
        ASSERT_TRUE(host.pulseReset(bits));
        EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware) << bits;
    }
    SerialHost host;
    ASSERT_TRUE(host.control(SerialHost::bootBits));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
    ASSERT_TRUE(host.pulseReset(0xEF));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::BootLoader);
}

TEST(SimulatedMcu, PokedControlByteStartsNothing)
{
    SerialHost host;
    host.computer.poke(EC_MCU_UPDATE_CTRL, 0x38);
    host.computer.poke(EC_MCU_UPDATE_CTRL, 0x28);
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
}

TEST(SimulatedMcu, OnlyAnAttachedKvaneIsReset)
{
    SerialHost host;
    host.computer.detach();
    ASSERT_TRUE(host.pulseReset(SerialHost::bootBits));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
    EXPECT_EQ(host.version(), 0);
    host.computer.attach(*tarnSimulator::findAccessory("dock"));
    ASSERT_TRUE(host.pulseReset(SerialHost::bootBits));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
    EXPECT_EQ(host.version(), 10203);
    EXPECT_EQ(host.send({0x7F}), silence);
}

TEST(SimulatedMcu, UnpluggedBootLoaderIsSilentAndStartsAnewWithThePower)
{
    SerialHost host;
    ASSERT_TRUE(host.enterBootLoader());
    host.computer.detach();
    EXPECT_EQ(host.command(0x01), silence);
    host.attachKvane(); // the boot loader is still selected
    EXPECT_EQ(host.computer.mcuMode(), McuMode::BootLoader);
    EXPECT_EQ(host.command(0x01), silence);
    EXPECT_EQ(host.send({0x7F}), acked);

    host.computer.detach();
    ASSERT_TRUE(host.control(0));
    host.attachKvane();
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);

    host.computer.poke(EC_MCU_UPDATE_CTRL, MCU_RESET_PULSE);
    host.attachKvane();
    EXPECT_EQ(host.computer.mcuMode(), McuMode::HeldInReset);
    ASSERT_TRUE(host.control(0));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
}

TEST(SimulatedMcu, LinkDownIsSilenceToo)
{
    SerialHost host;
    ASSERT_TRUE(host.enterBootLoader());
    host.computer.setLinkStatus(3);
    EXPECT_EQ(host.command(0x01), silence);
    host.computer.setLinkStatus(MCU_LINKED);
    EXPECT_EQ(host.command(0x01).size(), 5U);
}

TEST(SimulatedMcu, TellsTheVersionOfTheFirmwareThatItStarts)
{
    SerialHost host;
    host.putIntoFlash(tarnSimulator::makeFirmwareImage({9, 8, 7}));
    EXPECT_EQ(host.version(), 20005);
    ASSERT_TRUE(host.pulseReset(0));
    EXPECT_EQ(host.version(), 90807);
    host.computer.detach();
    EXPECT_EQ(host.version(), 0);
    host.attachKvane();
    EXPECT_EQ(host.version(), 90807);
    host.computer.reset();
    host.attachKvane();
    EXPECT_EQ(host.version(), 20005);
}

// The boot loader acts on its last bytes while the host may already have reset the MCU.
TEST(SimulatedMcu, ARunThatAResetHasEndedTellsNothing)
{
    SerialHost host;
    ASSERT_TRUE(host.enterBootLoader());
    tarnSimulator::AccessoryMcu mcu(*host.state);
    const std::uint32_t endedRun = mcu.run();
    ASSERT_TRUE(host.enterBootLoader());
    host.putIntoFlash(tarnSimulator::makeFirmwareImage({9, 8, 7}));

    mcu.startFirmware(endedRun);
    EXPECT_EQ(host.version(), 20005);
    mcu.leaveForNothing(endedRun);
    EXPECT_EQ(host.version(), 20005);
    host.computer.poke(EC_MCU_UPDATE_CTRL, 0);
    mcu.restart(endedRun);
    EXPECT_EQ(host.version(), 20005);
    EXPECT_EQ(host.computer.mcuMode(), McuMode::BootLoader);

    mcu.startFirmware(mcu.run());
    EXPECT_EQ(host.version(), 90807);
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
}

TEST(SimulatedMcu, WithoutAFirmwareNothingRunsAndTheLinkStays)
{
    SerialHost host;
    host.putIntoFlash({});
    ASSERT_TRUE(host.pulseReset(0));
    EXPECT_EQ(host.computer.mcuMode(), McuMode::NoFirmware);
    EXPECT_EQ(host.version(), 0);
    EXPECT_TRUE(host.computer.isAttached());
    EXPECT_EQ(host.send({0x7F}), silence);
    EXPECT_TRUE(host.enterBootLoader()); // which is how it is mended
}

TEST(SimulatedFirmware, ImageIsFoundAgainAndAlwaysTheSame)
{
    for (const std::size_t size : {0x400UL, 0x4000UL, 0x20000UL}) {
        Bytes image = tarnSimulator::makeFirmwareImage({1, 20, 255}, size);
        ASSERT_EQ(image.size(), size);
        EXPECT_EQ(image, tarnSimulator::makeFirmwareImage({1, 20, 255}, size));
        EXPECT_NE(image, tarnSimulator::makeFirmwareImage({1, 20, 254}, size));
        EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), (Bytes {0, 0x50, 0, 0x20, 0x11, 2, 0, 8}));
        image.resize(0x20000, 0xFF);
        EXPECT_EQ(tarnSimulator::findFirmware(image), (tarnSimulator::FirmwareVersion {1, 20, 255}));
    }
}

TEST(SimulatedFirmware, DamagedOneIsNone)
{
    const Bytes image = tarnSimulator::makeFirmwareImage({1, 2, 3});
    for (const std::size_t offset : {0UL, 0x200UL, 0x209UL, 0x20CUL, 0x20FUL, 0x3FFFUL}) {
        Bytes damaged = image;
        damaged[offset] ^= 0x40;
        EXPECT_EQ(tarnSimulator::findFirmware(damaged), std::nullopt) << offset;
    }
    Bytes shorter = image;
    shorter.resize(0x2000);
    EXPECT_EQ(tarnSimulator::findFirmware(shorter), std::nullopt);
    EXPECT_EQ(tarnSimulator::findFirmware(Bytes(0x20000, 0xFF)), std::nullopt);
    EXPECT_EQ(tarnSimulator::findFirmware(Bytes(0x20000, 0)), std::nullopt);
    EXPECT_EQ(tarnSimulator::findFirmware({}), std::nullopt);
}
