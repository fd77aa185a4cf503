#include "ec_host.h"

#include <gtest/gtest.h>

#include <vector>

using namespace tarnDeviceInfos;
using tarnSimulatorTest::EcHost;

namespace {

constexpr std::uint16_t someRegister = 0x1234;
constexpr std::uint16_t otherRegister = 0x3412;

std::vector<int> looksAtTheStatus(EcHost &host, int count)
{
    std::vector<int> looks;
    for (int i = 0; i < count; ++i)
        looks.push_back(host.wholeStatus());
    return looks;
}

} // namespace

TEST(SimulatedChannel, ReadAnswersTheByteAtTheAddressHighByteFirst)
{
    EcHost host;
    host.computer.poke(someRegister, 0x5A);
    host.computer.poke(otherRegister, 0xA5);
    EXPECT_EQ(host.status(), 0);

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
    EXPECT_EQ(host.computer.peek(someRegister), 0);
    host.sendData(0x77);
    EXPECT_EQ(host.computer.peek(someRegister), 0x77);
    EXPECT_EQ(host.computer.peek(otherRegister), 0);
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
    host.computer.poke(someRegister, 0x5A);
    host.sendCommand(XDATA_READ_CMD);
    host.sendData(0x99);

    host.beginRead(someRegister);
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

    host.beginRead(someRegister);
    EXPECT_EQ(host.takeData(), 0);
    host.sendData(0x77);
    EXPECT_EQ(host.computer.peek(someRegister), 0);
    EXPECT_EQ(host.state->counters.writes.load(), 0U);
}

TEST(SimulatedChannel, AnswerNotFetchedStaysUntilTheHostDrainsIt)
{
    EcHost host;
    host.computer.poke(someRegister, 0x5A);
    host.beginRead(someRegister);

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
    EXPECT_EQ(host.computer.peek(someRegister), 0);
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
    host.computer.poke(someRegister, 0x5A);
    ASSERT_EQ(host.read(someRegister), 0x5A);
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
    EXPECT_EQ(host.computer.peek(someRegister), 0x77);

    host.beginRead(someRegister);
    host.reconnect();
    EXPECT_TRUE(host.answerWaits());
    EXPECT_EQ(host.takeData(), 0x77);
}

TEST(SimulatedChannel, LogsEveryCompletedAccess)
{
    EcHost host;
    host.nowMs = 5000;
    ASSERT_TRUE(host.write(someRegister, 0x77));
    host.nowMs = 6000;
    ASSERT_EQ(host.read(someRegister), 0x77);
    host.beginRead(someRegister); // never fetched, so not completed

    const auto accesses = host.computer.registerLog().readAfter(0).accesses;
    ASSERT_EQ(accesses.size(), 2U);
    EXPECT_EQ(accesses[0].kind, tarnSimulator::AccessKind::Write);
    EXPECT_EQ(accesses[0].address, someRegister);
    EXPECT_EQ(accesses[0].value, 0x77);
    EXPECT_EQ(accesses[0].timeMs, 5000U);
    EXPECT_EQ(accesses[1].kind, tarnSimulator::AccessKind::Read);
    EXPECT_EQ(accesses[1].address, someRegister);
    EXPECT_EQ(accesses[1].value, 0x77);
    EXPECT_EQ(accesses[1].timeMs, 6000U);
    EXPECT_EQ(accesses[1].number, 2U);
}

// A host must use OBF and IBF only; the other bits of the status may have any value.
TEST(SimulatedChannel, OtherBitsOfTheStatusAreAnything)
{
    EcHost host;
    host.beginRead(someRegister);
    int everSet = 0;
    int everClear = 0;
    for (const int status : looksAtTheStatus(host, 200)) {
        EXPECT_EQ(status & 0x03, 0x01);
        everSet |= status;
        everClear |= ~status;
    }
    EXPECT_EQ(everSet, 0xFD);
    EXPECT_EQ(everClear & 0xFC, 0xFC);
}

TEST(SimulatedChannel, OtherBitsAreTheSameInEveryRun)
{
    EcHost first;
    EcHost second;
    const auto looks = looksAtTheStatus(first, 50);
    EXPECT_EQ(looksAtTheStatus(second, 50), looks);
    // Their sequence continues when the library is loaded again, and starts again with power-on.
    const auto next = looksAtTheStatus(first, 50);
    EXPECT_NE(next, looks);
    second.reconnect();
    EXPECT_EQ(looksAtTheStatus(second, 50), next);
    second.computer.reset();
    EXPECT_EQ(looksAtTheStatus(second, 50), looks);
}

TEST(SimulatedChannel, TakesEachByteAfterSoManyLooks)
{
    EcHost host;
    host.computer.timing().acceptancePolls.store(3);
    host.computer.poke(someRegister, 0x5A);
    const int bytes[] = {XDATA_READ_CMD, 0x12, 0x34};
    for (const int byte : bytes) {
        if (byte == XDATA_READ_CMD)
            host.sendCommand(XDATA_READ_CMD);
        else
            host.sendData(static_cast<std::uint8_t>(byte));
        host.nowMs += 1000000; // time alone does not move it
        EXPECT_EQ(host.status(), IBF);
        static_cast<void>(host.takeData()); // nor does the other port
        EXPECT_EQ(host.status(), IBF);
        host.reconnect();
        EXPECT_EQ(host.status(), IBF);
    }
    EXPECT_EQ(host.status(), OBF);
    EXPECT_EQ(host.takeData(), 0x5A);
    EXPECT_EQ(host.state->counters.writtenWhileFull.load(), 0U);
}

TEST(SimulatedChannel, APatientHostGetsAlongWithSlowAcceptance)
{
    EcHost host;
    host.computer.timing().acceptancePolls.store(4);
    ASSERT_TRUE(host.write(someRegister, 0x77));
    EXPECT_EQ(host.read(someRegister), 0x77);
    ASSERT_TRUE(host.write(otherRegister, 0x78));
    EXPECT_EQ(host.read(otherRegister), 0x78);
    EXPECT_EQ(host.state->counters.abortedCommands.load(), 0U);
    EXPECT_EQ(host.state->counters.writtenWhileFull.load(), 0U);
}

TEST(SimulatedChannel, CountsBytesThatAreWrittenWhileIbfIsSet)
{
    EcHost host;
    host.computer.timing().acceptancePolls.store(1);
    host.sendCommand(XDATA_WRITE_CMD);
    EXPECT_EQ(host.state->counters.writtenWhileFull.load(), 0U);
    host.sendData(0x12); // takes the place of the command
    EXPECT_EQ(host.state->counters.writtenWhileFull.load(), 1U);
    host.sendData(0x34);
    EXPECT_EQ(host.state->counters.writtenWhileFull.load(), 2U);
    EXPECT_TRUE(host.inputIsFull());
    EXPECT_FALSE(host.inputIsFull());
    host.sendData(0x77);
    EXPECT_EQ(host.state->counters.writtenWhileFull.load(), 2U);
    EXPECT_EQ(host.state->counters.commands.load(), 0U);
}
