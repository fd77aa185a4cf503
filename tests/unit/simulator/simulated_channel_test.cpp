#include "ec_host.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnSimulatorTest::EcHost;

namespace {

constexpr std::uint16_t SOME_REGISTER = 0x1234;
constexpr std::uint16_t OTHER_REGISTER = 0x3412;

} // namespace

TEST(SimulatedChannel, IsIdleAfterPowerOn)
{
    EcHost host;
    EXPECT_EQ(host.status(), 0);
}

TEST(SimulatedChannel, ReadAnswersTheByteAtTheAddressHighByteFirst)
{
    EcHost host;
    host.computer.poke(SOME_REGISTER, 0x5A);
    host.computer.poke(OTHER_REGISTER, 0xA5);

    host.sendCommand(XDATA_READ_CMD);
    EXPECT_EQ(host.status(), 0);
    host.sendData(0x12);
    EXPECT_EQ(host.status(), 0);
    host.sendData(0x34);
    EXPECT_EQ(host.status(), OBF);
    EXPECT_EQ(host.takeData(), 0x5A);
    EXPECT_EQ(host.status(), 0);
}

TEST(SimulatedChannel, WriteStoresTheByteWhenItsValueArrives)
{
    EcHost host;
    host.sendCommand(XDATA_WRITE_CMD);
    host.sendData(0x12);
    host.sendData(0x34);
    EXPECT_EQ(host.computer.peek(SOME_REGISTER), 0);
    host.sendData(0x77);
    EXPECT_EQ(host.computer.peek(SOME_REGISTER), 0x77);
    EXPECT_EQ(host.computer.peek(OTHER_REGISTER), 0);
    EXPECT_EQ(host.status(), 0);
}

TEST(SimulatedChannel, ReachesBothEndsOfTheMemory)
{
    EcHost host;
    ASSERT_TRUE(host.write(0x0000, 0x11));
    ASSERT_TRUE(host.write(0xFFFF, 0x22));
    EXPECT_EQ(host.read(0x0000), 0x11);
    EXPECT_EQ(host.read(0xFFFF), 0x22);
}

TEST(SimulatedChannel, CommandAbortsUnfinishedRead)
{
    EcHost host;
    host.computer.poke(SOME_REGISTER, 0x5A);
    host.sendCommand(XDATA_READ_CMD);
    host.sendData(0x99);

    host.beginRead(SOME_REGISTER);
    EXPECT_EQ(host.takeData(), 0x5A);
    EXPECT_EQ(host.state->counters.abortedCommands.load(), 1U);
    EXPECT_EQ(host.state->counters.commands.load(), 2U);
}

TEST(SimulatedChannel, CommandAbortsUnfinishedWriteBeforeItsValue)
{
    EcHost host;
    host.sendCommand(XDATA_WRITE_CMD);
    host.sendData(0x12);
    host.sendData(0x34);

    host.beginRead(SOME_REGISTER);
    EXPECT_EQ(host.takeData(), 0);
    host.sendData(0x77);
    EXPECT_EQ(host.computer.peek(SOME_REGISTER), 0);
    EXPECT_EQ(host.state->counters.writes.load(), 0U);
}

TEST(SimulatedChannel, AnswerNotFetchedStaysUntilTheHostDrainsIt)
{
    EcHost host;
    host.computer.poke(SOME_REGISTER, 0x5A);
    host.beginRead(SOME_REGISTER);

    host.sendCommand(XDATA_WRITE_CMD);
    EXPECT_TRUE(host.answerWaits());
    EXPECT_EQ(host.takeData(), 0x5A);
    EXPECT_FALSE(host.answerWaits());
}

TEST(SimulatedChannel, UnknownCommandTakesNoData)
{
    EcHost host;
    host.sendCommand(0x42);
    host.sendData(0x12);
    host.sendData(0x34);
    host.sendData(0x77);
    EXPECT_EQ(host.status(), 0);
    EXPECT_EQ(host.computer.peek(SOME_REGISTER), 0);
    EXPECT_EQ(host.computer.registerLog().end(), 0U);
}

TEST(SimulatedChannel, DataWithoutCommandIsIgnored)
{
    EcHost host;
    host.sendData(0x12);
    host.sendData(0x34);
    EXPECT_EQ(host.status(), 0);
}

TEST(SimulatedChannel, OtherPortsAreNotTheEc)
{
    EcHost host;
    host.ec->writePort(0x62, 0x12);
    host.ec->writePort(0x66, XDATA_READ_CMD);
    EXPECT_EQ(host.ec->readPort(0x62), 0xFF);
    EXPECT_EQ(host.ec->readPort(0x66), 0xFF);
    EXPECT_EQ(host.state->counters.commands.load(), 0U);
}

TEST(SimulatedChannel, ReadingWithoutAnswerRepeatsTheLastByteAndIsNoAccess)
{
    EcHost host;
    host.computer.poke(SOME_REGISTER, 0x5A);
    ASSERT_EQ(host.read(SOME_REGISTER), 0x5A);
    EXPECT_EQ(host.takeData(), 0x5A);
    EXPECT_EQ(host.state->counters.reads.load(), 1U);
}

TEST(SimulatedChannel, SurvivesAReconnectInTheMiddleOfAnExchange)
{
    EcHost host;
    host.sendCommand(XDATA_WRITE_CMD);
    host.sendData(0x12);
    host.reconnect();
    host.sendData(0x34);
    host.sendData(0x77);
    EXPECT_EQ(host.computer.peek(SOME_REGISTER), 0x77);

    host.beginRead(SOME_REGISTER);
    host.reconnect();
    EXPECT_TRUE(host.answerWaits());
    EXPECT_EQ(host.takeData(), 0x77);
}

TEST(SimulatedChannel, LogsEveryCompletedAccess)
{
    EcHost host;
    host.nowMs = 5000;
    ASSERT_TRUE(host.write(SOME_REGISTER, 0x77));
    host.nowMs = 6000;
    ASSERT_EQ(host.read(SOME_REGISTER), 0x77);
    host.beginRead(SOME_REGISTER); // never fetched, so not completed

    const auto accesses = host.computer.registerLog().readAfter(0).accesses;
    ASSERT_EQ(accesses.size(), 2U);
    EXPECT_EQ(accesses[0].kind, tarnSimulator::AccessKind::Write);
    EXPECT_EQ(accesses[0].address, SOME_REGISTER);
    EXPECT_EQ(accesses[0].value, 0x77);
    EXPECT_EQ(accesses[0].timeMs, 5000U);
    EXPECT_EQ(accesses[1].kind, tarnSimulator::AccessKind::Read);
    EXPECT_EQ(accesses[1].address, SOME_REGISTER);
    EXPECT_EQ(accesses[1].value, 0x77);
    EXPECT_EQ(accesses[1].timeMs, 6000U);
    EXPECT_EQ(accesses[1].number, 2U);
}
