#include "serial_host.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using namespace tarnSimulatorTest;
using tarnSimulator::Fault;

class SimulatedFlashFaults : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(host.enterBootLoader()); }

    Bytes writeBlock(std::uint32_t address) { return host.writeMemory(address, Bytes(256, 0x11)); }
    void expectRepaired()
    {
        host.computer.faults().clear();
        ASSERT_TRUE(host.enterBootLoader());
        EXPECT_EQ(host.command(0x01).size(), 5U);
        EXPECT_EQ(host.eraseAll(), ackedTwice);
        EXPECT_EQ(writeBlock(SerialHost::flash + 0x300), done);
        Bytes expected = done;
        expected.resize(done.size() + 256, 0x11);
        EXPECT_EQ(host.readMemory(SerialHost::flash + 0x300, 255), expected);
        EXPECT_EQ(host.go(0), ackedTwice);
    }

    SerialHost host;
};

TEST_F(SimulatedFlashFaults, SilentOnceAskedForTheVersion)
{
    host.computer.faults().switchOn(Fault::FlashSilent);
    EXPECT_EQ(host.command(0x00).size(), 15U);
    EXPECT_EQ(host.command(0x01), acked);
    EXPECT_EQ(host.command(0x02), silence);
    EXPECT_EQ(host.send({0x7F, 0x7F}), silence);
    ASSERT_TRUE(host.enterBootLoader()); // a reset gets it as far as that again
    EXPECT_EQ(host.command(0x01), acked);
    EXPECT_EQ(host.command(0x01), silence);
    expectRepaired();
}

TEST_F(SimulatedFlashFaults, WriteRefusedAfterSomeBlocks)
{
    host.computer.faults().switchOn(Fault::FlashWriteRefused, 2);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(host.eraseAll(), ackedTwice);
        EXPECT_EQ(writeBlock(SerialHost::flash), done);
        EXPECT_EQ(writeBlock(SerialHost::ram), done); // does not count
        EXPECT_EQ(writeBlock(SerialHost::flash + 0x100), done);
        const Bytes before = host.computer.mcuFlash();
        EXPECT_EQ(writeBlock(SerialHost::flash + 0x200), (Bytes {0x79, 0x79, 0x1F}));
        EXPECT_EQ(writeBlock(SerialHost::flash + 0x200), (Bytes {0x79, 0x79, 0x1F}));
        EXPECT_EQ(host.computer.mcuFlash(), before);
        EXPECT_EQ(writeBlock(SerialHost::ram), done);
    }
    expectRepaired();
}

TEST_F(SimulatedFlashFaults, CorruptByteIsReadWrongWhereverTheReadBegins)
{
    host.putIntoFlash(Bytes(0x1000, 0x22));
    host.computer.faults().switchOn(Fault::FlashCorrupt);
    for (const std::uint32_t start : {0x300U, 0x2FFU, 0x201U}) {
        Bytes expected = done;
        expected.resize(done.size() + 256, 0x22);
        expected[done.size() + 0x300 - start] = 0x23;
        EXPECT_EQ(host.readMemory(SerialHost::flash + start, 255), expected) << start;
    }
    for (const std::uint32_t start : {0x200U, 0x301U}) {
        Bytes expected = done;
        expected.resize(done.size() + 256, 0x22);
        EXPECT_EQ(host.readMemory(start, 255), expected) << start;
    }
    EXPECT_EQ(host.computer.mcuFlash()[0x300], 0x22);
    expectRepaired();
}

TEST_F(SimulatedFlashFaults, UnpluggedAfterSomeBlocks)
{
    host.computer.faults().switchOn(Fault::FlashUnplugged, 1);
    EXPECT_EQ(host.eraseAll(), ackedTwice);
    EXPECT_EQ(writeBlock(SerialHost::flash), done);
    EXPECT_EQ(writeBlock(SerialHost::flash + 0x100), silence);
    EXPECT_EQ(host.send({0x7F, 0x7F}), silence);
    EXPECT_EQ(host.computer.mcuFlash()[0x100], 0xFF);
    host.computer.faults().switchOn(Fault::FlashUnplugged, 0);
    ASSERT_TRUE(host.pulseReset(SerialHost::bootBits));
    EXPECT_EQ(host.send({0x7F}), silence);
    expectRepaired();
}

TEST_F(SimulatedFlashFaults, GoRefused)
{
    host.computer.faults().switchOn(Fault::FlashGoRefused);
    EXPECT_EQ(host.go(0), (Bytes {0x79, 0x1F}));
    EXPECT_EQ(host.computer.mcuMode(), tarnSimulator::McuMode::BootLoader);
    EXPECT_EQ(host.readMemory(0, 0).size(), 4U);
    expectRepaired();
}

TEST_F(SimulatedFlashFaults, InitNoiseIsOneRefusalAfterEachStart)
{
    host.computer.faults().switchOn(Fault::FlashInitNoise);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(host.pulseReset(SerialHost::bootBits));
        EXPECT_EQ(host.send({0x7F}), refused);
        EXPECT_EQ(host.command(0x02).size(), 5U);
    }
    expectRepaired();
}
