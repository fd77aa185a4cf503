#include "serial_host.h"

#include "simulator/firmware_image.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace tarnDeviceInfos;
using namespace tarnSimulatorTest;
using tarnSimulator::McuMode;

class SimulatedBootLoader : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(host.enterBootLoader()); }

    // So many bytes that all differ from their neighbours and from erased ones.
    static Bytes pattern(std::size_t count)
    {
        Bytes bytes(count);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t {0});
        return bytes;
    }
    static Bytes acknowledged(const Bytes &data)
    {
        Bytes bytes = done;
        bytes.insert(bytes.end(), data.begin(), data.end());
        return bytes;
    }
    void expectAlive() { EXPECT_EQ(host.command(0x02), (Bytes {0x79, 1, 0x04, 0x10, 0x79})); }

    SerialHost host;
};

TEST_F(SimulatedBootLoader, IgnoresEverythingButInitAtFirst)
{
    ASSERT_TRUE(host.pulseReset(SerialHost::bootBits));
    EXPECT_EQ(host.send({0x00, 0xFF, 0x55, 0xAA}), silence);
    EXPECT_EQ(host.send({0x7F}), acked);
    // From then on it is half of a command that does not exist.
    EXPECT_EQ(host.send({0x7F}), silence);
    EXPECT_EQ(host.send({0x7F}), refused);
    expectAlive();
}

TEST_F(SimulatedBootLoader, TellsItsCommandsVersionAndDevice)
{
    EXPECT_EQ(host.command(0x00),
        (Bytes {0x79, 11, 0x22, 0x00, 0x01, 0x02, 0x11, 0x21, 0x31, 0x43, 0x63, 0x73, 0x82, 0x92, 0x79}));
    EXPECT_EQ(host.command(0x01), (Bytes {0x79, 0x22, 0x00, 0x00, 0x79}));
    EXPECT_EQ(host.command(0x02), (Bytes {0x79, 0x01, 0x04, 0x10, 0x79}));
}

TEST_F(SimulatedBootLoader, TakesBytesAsTheyCome)
{
    EXPECT_EQ(host.send({0x02}), silence);
    EXPECT_EQ(host.send({0xFD, 0x01}), (Bytes {0x79, 0x01, 0x04, 0x10, 0x79}));
    EXPECT_EQ(host.send({0xFE, 0x02, 0xFD}).size(), 10U);
}

TEST_F(SimulatedBootLoader, RefusesUnknownAndDamagedCommands)
{
    EXPECT_EQ(host.command(0x50), refused);
    EXPECT_EQ(host.command(0xA1), refused); // the checksum command of later chips
    EXPECT_EQ(host.send({0x02, 0xFC}), refused);
    expectAlive();
}

TEST_F(SimulatedBootLoader, WritesErasedFlashAndReadsItBack)
{
    EXPECT_EQ(host.eraseAll(), ackedTwice);
    EXPECT_EQ(host.computer.mcuFlash(), Bytes(0x20000, 0xFF));
    EXPECT_EQ(host.writeMemory(SerialHost::flash + 0x400, pattern(256)), done);
    EXPECT_EQ(host.readMemory(SerialHost::flash + 0x400, 255), acknowledged(pattern(256)));
    EXPECT_EQ(host.readMemory(0x400, 255), acknowledged(pattern(256))); // where it appears, too
    EXPECT_EQ(host.readMemory(SerialHost::flash + 0x402, 0), acknowledged({2}));
    EXPECT_EQ(host.writeMemory(0x1FFFC, pattern(4)), done);
    Bytes expected(0x20000, 0xFF);
    std::iota(expected.begin() + 0x400, expected.begin() + 0x500, std::uint8_t {0});
    std::iota(expected.end() - 4, expected.end(), std::uint8_t {0});
    EXPECT_EQ(host.computer.mcuFlash(), expected);
}

TEST_F(SimulatedBootLoader, ProgrammingOnlyClearsBits)
{
    EXPECT_EQ(host.eraseAll(), ackedTwice);
    EXPECT_EQ(host.writeMemory(SerialHost::flash, {0x0F, 0xF0}), done);
    EXPECT_EQ(host.writeMemory(SerialHost::flash, {0x35, 0x35}), done);
    EXPECT_EQ(host.readMemory(SerialHost::flash, 1), acknowledged({0x05, 0x30}));
}

TEST_F(SimulatedBootLoader, ReadsAndWritesRam)
{
    EXPECT_EQ(host.writeMemory(SerialHost::ram, {0x55, 0x00}), done);
    EXPECT_EQ(host.writeMemory(SerialHost::ram, {0xAA, 0x01}), done);
    EXPECT_EQ(host.readMemory(SerialHost::ram, 2), acknowledged({0xAA, 0x01, 0x00}));
    EXPECT_EQ(host.writeMemory(0x20004FFC, pattern(4)), done);
    EXPECT_EQ(host.readMemory(0x20004FFC, 3), acknowledged(pattern(4)));
}

TEST_F(SimulatedBootLoader, RefusesMemoryThatIsNotThere)
{
    const Bytes refusedAddress {0x79, 0x1F};
    for (const std::uint32_t address :
        {0x00020000U, 0x07FFFFFFU, 0x08020000U, 0x200001FFU, 0x20005000U, 0x1FFFF7FFU, 0xFFFFFFFFU}) {
        EXPECT_EQ((SerialHost::joined({host.command(0x11), host.sendAddress(address)})), refusedAddress);
        EXPECT_EQ((SerialHost::joined({host.command(0x31), host.sendAddress(address)})), refusedAddress);
        EXPECT_EQ(host.go(address), refusedAddress);
    }
    // Options can be read, no more.
    EXPECT_EQ((SerialHost::joined({host.command(0x31), host.sendAddress(SerialHost::optionBytes)})),
        refusedAddress);
    EXPECT_EQ(host.go(SerialHost::optionBytes), refusedAddress);
    // Beginning inside and ending outside.
    const Bytes refusedCount {0x79, 0x79, 0x1F};
    EXPECT_EQ(host.readMemory(SerialHost::flash + 0x1FFFF, 1), refusedCount);
    EXPECT_EQ(host.writeMemory(SerialHost::flash + 0x1FFFE, pattern(4)), refusedCount);
    EXPECT_EQ(host.readMemory(SerialHost::optionBytes + 8, 8), refusedCount);
    EXPECT_EQ(host.writeMemory(0x20004FFE, pattern(4)), refusedCount);
    expectAlive();
}

TEST_F(SimulatedBootLoader, RefusesWrongChecksumsAndGoesOn)
{
    const Bytes before = host.computer.mcuFlash();
    for (const std::uint8_t code : Bytes {0x11, 0x21, 0x31}) {
        EXPECT_EQ(host.command(code), acked);
        EXPECT_EQ(host.send({0x08, 0, 0, 0, 0x09}), refused) << +code;
    }
    EXPECT_EQ(host.command(0x11), acked);
    EXPECT_EQ(host.sendAddress(SerialHost::flash), acked);
    EXPECT_EQ(host.send({0x03, 0xFD}), refused);
    EXPECT_EQ(host.command(0x31), acked);
    EXPECT_EQ(host.sendAddress(SerialHost::flash), acked);
    EXPECT_EQ(host.send({0x01, 0x00, 0x00, 0x00}), refused);
    EXPECT_EQ(host.command(0x43), acked);
    EXPECT_EQ(host.send({0xFF, 0x01}), refused);
    EXPECT_EQ(host.command(0x43), acked);
    EXPECT_EQ(host.send({0x00, 0x05, 0x06}), refused);
    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.send({0xFF, 0xFF, 0x01}), refused);
    EXPECT_EQ(host.command(0x63), acked);
    EXPECT_EQ(host.send({0x00, 0x05, 0x06}), refused);
    EXPECT_EQ(host.computer.mcuFlash(), before);
    expectAlive();
}

TEST_F(SimulatedBootLoader, ErasesPages)
{
    Bytes expected = host.computer.mcuFlash();
    const auto erase = [&expected](std::size_t page) {
        std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(page * 1024), 1024, std::uint8_t {0xFF});
    };
    EXPECT_EQ(host.command(0x43), acked);
    EXPECT_EQ(host.sendSummed({0x01, 0x00, 0x07}), acked);
    erase(0);
    erase(7);
    EXPECT_EQ(host.computer.mcuFlash(), expected);
    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.sendSummed({0x00, 0x01, 0x00, 0x03, 0x00, 0x7F}), acked);
    erase(3);
    EXPECT_EQ(host.computer.mcuFlash(), expected);
    EXPECT_EQ(host.command(0x43), acked);
    EXPECT_EQ(host.sendSummed({0x00, 128}), refused);
    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.sendSummed({0x00, 0x00, 0x01, 0x00}), refused);
    EXPECT_EQ(host.computer.mcuFlash(), expected);
}

TEST_F(SimulatedBootLoader, ExtendedEraseTakesAllPagesAtOnceOrOneByOne)
{
    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.send({0xFF, 0xFF, 0x00}), acked);
    EXPECT_EQ(host.computer.mcuFlash(), Bytes(0x20000, 0xFF));

    host.putIntoFlash(Bytes(0x20000, 0));
    Bytes all {0x00, 0x7F};
    for (std::uint8_t page = 0; page < 128; ++page) {
        all.push_back(0);
        all.push_back(page);
    }
    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.sendSummed(all), acked);
    EXPECT_EQ(host.computer.mcuFlash(), Bytes(0x20000, 0xFF));

    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.sendSummed({0xFF, 0xFE}), refused); // a bank that it does not have
    EXPECT_EQ(host.command(0x44), acked);
    EXPECT_EQ(host.send({0x00, 0x80}), refused); // more pages than it has
    expectAlive();
}

TEST_F(SimulatedBootLoader, StartsWhatIsInTheFlash)
{
    for (const std::uint32_t address : {SerialHost::flash, 0U}) {
        ASSERT_TRUE(host.enterBootLoader());
        host.putIntoFlash(tarnSimulator::makeFirmwareImage({5, 6, 7}));
        EXPECT_EQ(host.go(address), ackedTwice);
        EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
        EXPECT_EQ(host.version(), 50607);
        EXPECT_EQ(host.command(0x02), silence);
        EXPECT_EQ(host.send({0x7F}), silence);
    }
    ASSERT_TRUE(host.enterBootLoader());
    EXPECT_EQ(host.go(SerialHost::flash + 0x1000), ackedTwice); // into the middle of it
    EXPECT_EQ(host.computer.mcuMode(), McuMode::NoFirmware);
    EXPECT_EQ(host.version(), 0);
}

TEST_F(SimulatedBootLoader, CodeInRamResetsTheMcu)
{
    EXPECT_EQ(host.go(SerialHost::ram), ackedTwice);
    EXPECT_EQ(host.computer.mcuMode(), McuMode::BootLoader);
    EXPECT_EQ(host.command(0x02), silence); // not before init
    EXPECT_EQ(host.send({0x7F}), acked);
    ASSERT_TRUE(host.control(0));
    EXPECT_EQ(host.go(SerialHost::ram), ackedTwice);
    EXPECT_EQ(host.computer.mcuMode(), McuMode::Firmware);
}

TEST_F(SimulatedBootLoader, ProtectedSectorsAreNeitherErasedNorWritten)
{
    EXPECT_EQ(host.command(0x63), acked);
    EXPECT_EQ(host.sendSummed({0x01, 0x00, 0x1F}), acked);
    EXPECT_EQ(host.command(0x02), silence); // it has reset itself
    ASSERT_EQ(host.send({0x7F}), acked);
    const Bytes before = host.computer.mcuFlash();
    const Bytes refusedErase {0x79, 0x1F};
    EXPECT_EQ(host.eraseAll(), refusedErase);
    EXPECT_EQ((SerialHost::joined({host.command(0x43), host.sendSummed({0, 3})})), refusedErase);
    EXPECT_EQ((SerialHost::joined({host.command(0x43), host.sendSummed({0, 127})})), refusedErase);
    EXPECT_EQ(host.writeMemory(0xFFC, pattern(4)), (Bytes {0x79, 0x79, 0x1F}));
    EXPECT_EQ(host.writeMemory(0x1EFFE, pattern(4)), (Bytes {0x79, 0x79, 0x1F}));
    EXPECT_EQ(host.computer.mcuFlash(), before);
    EXPECT_EQ((SerialHost::joined({host.command(0x43), host.sendSummed({0, 4})})), ackedTwice);
    EXPECT_EQ(host.readMemory(SerialHost::optionBytes, 15),
        acknowledged({0xA5, 0x5A, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFE, 0x01, 0xFF, 0, 0xFF, 0, 0x7F, 0x80}));

    EXPECT_EQ(host.command(0x73), ackedTwice);
    ASSERT_EQ(host.send({0x7F}), acked);
    EXPECT_EQ(host.eraseAll(), ackedTwice);
    EXPECT_EQ(host.command(0x63), acked);
    EXPECT_EQ(host.sendSummed({0x00, 0x20}), refused);
}

TEST_F(SimulatedBootLoader, ReadoutProtectionKeepsTheFlashToItselfUntilItIsErased)
{
    EXPECT_EQ(host.command(0x82), ackedTwice);
    ASSERT_EQ(host.send({0x7F}), acked);
    for (const std::uint8_t code : Bytes {0x11, 0x21, 0x31, 0x43, 0x44, 0x63, 0x73, 0x82})
        EXPECT_EQ(host.command(code), refused) << +code;
    EXPECT_EQ(host.command(0x01).size(), 5U);
    expectAlive();
    EXPECT_EQ(host.command(0x92), ackedTwice);
    ASSERT_EQ(host.send({0x7F}), acked);
    EXPECT_EQ(host.readMemory(SerialHost::flash, 1), acknowledged({0xFF, 0xFF}));
    EXPECT_EQ(host.computer.mcuFlash(), Bytes(0x20000, 0xFF));
}

TEST_F(SimulatedBootLoader, ResetEndsACommandInTheMiddle)
{
    EXPECT_EQ(host.command(0x31), acked);
    EXPECT_EQ(host.sendAddress(SerialHost::ram), acked);
    EXPECT_EQ(host.send({0x7F, 0x01}), silence); // the beginning of 128 bytes
    ASSERT_TRUE(host.enterBootLoader());
    expectAlive();
}

TEST_F(SimulatedBootLoader, AnotherServerOfTheLineGoesOnWhereTheLastOneStopped)
{
    EXPECT_EQ(host.command(0x11), acked);
    EXPECT_EQ(host.send({0x1F, 0xFF}), silence);
    tarnSimulator::BootLoader other(*host.state);
    EXPECT_EQ(other.receive(Bytes {0xF8, 0x00, 0x1F ^ 0xFF ^ 0xF8}), acked);
    EXPECT_EQ(other.receive(Bytes {0x00, 0xFF}), (Bytes {0x79, 0xA5}));
}
