#include "ec_host.h"

#include <gtest/gtest.h>

#include <set>

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;
using tarnSimulatorTest::EcHost;

namespace {

constexpr std::uint16_t failing = EC_POWERMODE_PL2;
constexpr std::uint16_t working = EC_FAN_MODE;
constexpr std::uint64_t givenUpMs = EcHost::maximumPolls * EcHost::pollMs;

void expectEverythingWorks(EcHost &host)
{
    for (const std::uint16_t address : {failing, working}) {
        ASSERT_TRUE(host.write(address, 0x2A));
        EXPECT_EQ(host.read(address), 0x2A);
    }
}

} // namespace

TEST(SimulatedFaults, TableIsCompleteAndDistinct)
{
    std::set<std::string_view> names;
    for (const auto &fault : tarnSimulator::faultTable()) {
        EXPECT_EQ(tarnSimulator::findFault(fault.name), &fault);
        EXPECT_EQ(&tarnSimulator::describe(fault.fault), &fault);
        EXPECT_FALSE(fault.help.empty());
        names.insert(fault.name);
    }
    EXPECT_EQ(names.size(), tarnSimulator::faultCount);
    EXPECT_EQ(tarnSimulator::findFault("no-such-fault"), nullptr);
}

TEST(SimulatedFaults, AllAreOffAfterPowerOnAndCanBeCleared)
{
    EcHost host;
    for (const auto &fault : tarnSimulator::faultTable()) {
        EXPECT_FALSE(host.computer.faults().isOn(fault.fault));
        EXPECT_FALSE(host.computer.faults().wasOn(fault.fault));
        host.computer.faults().switchOn(fault.fault, 1);
        EXPECT_EQ(host.computer.faults().value(fault.fault), 1);
    }
    host.computer.faults().clear();
    for (const auto &fault : tarnSimulator::faultTable()) {
        EXPECT_EQ(host.computer.faults().value(fault.fault), std::nullopt);
        EXPECT_TRUE(host.computer.faults().wasOn(fault.fault));
    }
    expectEverythingWorks(host);
}

TEST(SimulatedFaults, PowerOnForgetsThemAll)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::Slow, 7);
    host.computer.reset();
    EXPECT_FALSE(host.computer.faults().isOn(Fault::Slow));
    EXPECT_FALSE(host.computer.faults().wasOn(Fault::Slow));
}

TEST(SimulatedFaults, IbfStuckTakesNothing)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::IbfStuck);
    EXPECT_EQ(host.status(), IBF);
    const std::uint64_t startMs = host.nowMs;
    EXPECT_FALSE(host.write(working, 1));
    EXPECT_EQ(host.nowMs - startMs, givenUpMs);
    EXPECT_EQ(host.read(working), std::nullopt);
    EXPECT_EQ(host.computer.peek(working), 0);

    host.computer.faults().switchOff(Fault::IbfStuck);
    expectEverythingWorks(host);
}

TEST(SimulatedFaults, IbfStuckInTheMiddleOfAWrite)
{
    EcHost host;
    host.sendCommand(XDATA_WRITE_CMD);
    host.sendData(working >> 8);
    host.computer.faults().switchOn(Fault::IbfStuck);
    host.sendData(working & 0xFF);
    EXPECT_EQ(host.status(), IBF);

    host.computer.faults().switchOff(Fault::IbfStuck);
    EXPECT_EQ(host.status(), 0); // the address byte is taken now
    host.sendData(0x11);
    EXPECT_EQ(host.computer.peek(working), 0x11);
}

TEST(SimulatedFaults, ObfStuckCannotBeDrainedButReadsWork)
{
    EcHost host;
    host.computer.poke(working, 0x21);
    host.computer.faults().switchOn(Fault::ObfStuck);
    EXPECT_EQ(host.status(), OBF);
    static_cast<void>(host.takeData());
    EXPECT_EQ(host.status(), OBF);
    const std::uint64_t startMs = host.nowMs;
    EXPECT_EQ(host.read(working), 0x21);
    EXPECT_EQ(host.nowMs - startMs, givenUpMs);
    EXPECT_EQ(host.state->counters.reads.load(), 1U);

    host.computer.faults().switchOff(Fault::ObfStuck);
    expectEverythingWorks(host);
}

TEST(SimulatedFaults, NoAnswerStopsReadsOnly)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::NoAnswer);
    EXPECT_TRUE(host.write(working, 0x21));
    EXPECT_EQ(host.computer.peek(working), 0x21);
    const std::uint64_t startMs = host.nowMs;
    EXPECT_EQ(host.read(working), std::nullopt);
    EXPECT_EQ(host.nowMs - startMs, givenUpMs);

    host.reconnect();
    host.computer.faults().switchOff(Fault::NoAnswer);
    EXPECT_EQ(host.read(working), 0x21);
    expectEverythingWorks(host);
}

TEST(SimulatedFaults, SlowDelaysIbfAndObf)
{
    EcHost host;
    host.computer.poke(working, 0x21);
    host.computer.faults().switchOn(Fault::Slow, 30);
    host.sendCommand(XDATA_READ_CMD);
    EXPECT_TRUE(host.inputIsFull());
    host.nowMs += 29;
    EXPECT_TRUE(host.inputIsFull());
    host.nowMs += 1;
    EXPECT_FALSE(host.inputIsFull());
    host.sendData(working >> 8);
    host.nowMs += 30;
    EXPECT_FALSE(host.inputIsFull());
    host.sendData(working & 0xFF);
    host.nowMs += 30;
    EXPECT_EQ(host.status(), 0);
    host.nowMs += 29;
    EXPECT_EQ(host.status(), 0);
    host.nowMs += 1;
    EXPECT_EQ(host.status(), OBF);
    EXPECT_EQ(host.takeData(), 0x21);
}

TEST(SimulatedFaults, SlowStillWorksForAPatientHost)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::Slow, 100);
    expectEverythingWorks(host);
    host.computer.faults().switchOff(Fault::Slow);
    expectEverythingWorks(host);
}

TEST(SimulatedFaults, AnswerSlowerThanTheHostIsDrainedByTheNextExchange)
{
    EcHost host;
    host.computer.poke(failing, 0x11);
    host.computer.poke(working, 0x21);
    host.sendCommand(XDATA_READ_CMD);
    host.sendData(failing >> 8);
    host.computer.faults().switchOn(Fault::Slow, 6000);
    host.sendData(failing & 0xFF);
    host.nowMs += 6000;
    EXPECT_EQ(host.status(), 0); // the address is taken, the answer under way
    host.nowMs += 5000;
    EXPECT_EQ(host.status(), 0); // and this host gives it up
    host.reconnect();

    host.nowMs += 1000;
    host.computer.faults().switchOff(Fault::Slow);
    EXPECT_EQ(host.status(), OBF);
    EXPECT_EQ(host.read(working), 0x21);
    EXPECT_EQ(host.computer.registerLog().end(), 2U);
}

TEST(SimulatedFaults, ReadbackOffsetShiftsOnlyTheReadBack)
{
    EcHost host;
    host.computer.setPowerControl(PL_CTRL_MANUAL);
    ASSERT_TRUE(host.write(EC_POWERMODE_PL1, 75));
    host.computer.faults().switchOn(Fault::ReadbackOffset, -11);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 64);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1), 75);
    host.computer.faults().switchOn(Fault::ReadbackOffset, 10);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 85);
    host.computer.faults().switchOn(Fault::ReadbackOffset, -100);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 0);
    host.computer.faults().switchOn(Fault::ReadbackOffset, 250);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 255);
    host.computer.faults().switchOff(Fault::ReadbackOffset);
    EXPECT_EQ(host.read(EC_POWERMODE_PL1_CHECK), 75);
}

struct RefusalRow
{
    Fault fault;
    bool readFails;
    bool writeFails;
};

class SimulatedRefusal : public ::testing::TestWithParam<RefusalRow>
{ };

TEST_P(SimulatedRefusal, HitsExactlyItsRegisterAndTheChannelRecovers)
{
    EcHost host;
    host.computer.poke(failing, 0x11);
    host.computer.faults().switchOn(GetParam().fault, failing);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(host.write(failing, 0x22), !GetParam().writeFails);
        EXPECT_EQ(host.computer.peek(failing), GetParam().writeFails ? 0x11 : 0x22);
        // A read right after it works at once, not just after another time-out.
        const std::uint64_t startMs = host.nowMs;
        host.computer.poke(working, 0x33);
        EXPECT_EQ(host.read(working), 0x33);
        EXPECT_EQ(host.nowMs, startMs);

        EXPECT_EQ(host.read(failing).has_value(), !GetParam().readFails);
        EXPECT_TRUE(host.write(working, 0x44));
        EXPECT_EQ(host.computer.peek(working), 0x44);
    }
    const std::uint64_t refused = (GetParam().readFails ? 2U : 0U) + (GetParam().writeFails ? 2U : 0U);
    EXPECT_EQ(host.state->counters.refusedAccesses.load(), refused);
    host.computer.faults().clear();
    expectEverythingWorks(host);
}

INSTANTIATE_TEST_SUITE_P(All, SimulatedRefusal,
    ::testing::Values(RefusalRow {Fault::FailRegister, true, true}, RefusalRow {Fault::FailRead, true, false},
        RefusalRow {Fault::FailWrite, false, true}));

TEST(SimulatedFaults, RefusedWriteKeepsIbfForAsLongAsTheHostLooks)
{
    EcHost host;
    host.computer.timing().refusedWritePolls.store(3);
    host.computer.faults().switchOn(Fault::FailWrite, failing);
    host.sendCommand(XDATA_WRITE_CMD);
    host.sendData(failing >> 8);
    host.sendData(failing & 0xFF);
    host.nowMs += 1000000; // time alone does not free it
    EXPECT_TRUE(host.inputIsFull());
    EXPECT_TRUE(host.inputIsFull());
    EXPECT_TRUE(host.inputIsFull());
    EXPECT_FALSE(host.inputIsFull());
    host.sendData(0x55); // too late: not taken
    EXPECT_NE(host.computer.peek(failing), 0x55);
}

TEST(SimulatedFaults, CommandFreesARefusedWriteAtOnce)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::FailWrite, failing);
    host.sendCommand(XDATA_WRITE_CMD);
    host.sendData(failing >> 8);
    host.sendData(failing & 0xFF);
    EXPECT_TRUE(host.inputIsFull());
    host.reconnect();
    EXPECT_TRUE(host.inputIsFull());
    host.sendCommand(XDATA_READ_CMD);
    EXPECT_FALSE(host.inputIsFull());
}

TEST(SimulatedFaults, SkippedAccessesOfTheRegisterSucceedFirst)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::FailRegister, failing, 3);
    EXPECT_TRUE(host.write(failing, 1));
    EXPECT_TRUE(host.write(working, 1)); // does not count
    EXPECT_TRUE(host.read(failing).has_value());
    EXPECT_EQ(host.computer.faults().remaining(Fault::FailRegister), 1U);
    EXPECT_TRUE(host.write(failing, 2));
    EXPECT_FALSE(host.write(failing, 3));
    EXPECT_FALSE(host.read(failing).has_value());
    EXPECT_EQ(host.computer.peek(failing), 2);
}

TEST(SimulatedFaults, DirectionsCountSeparately)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::FailRead, failing, 1);
    EXPECT_TRUE(host.write(failing, 1));
    EXPECT_TRUE(host.write(failing, 1));
    EXPECT_TRUE(host.read(failing).has_value());
    EXPECT_FALSE(host.read(failing).has_value());
}

TEST(SimulatedFaults, FailAfterStrikesOnceWhateverTheRegister)
{
    EcHost host;
    host.computer.faults().switchOn(Fault::FailAfter, 2, 2);
    EXPECT_TRUE(host.write(working, 1));
    EXPECT_TRUE(host.read(failing).has_value());
    EXPECT_TRUE(host.computer.faults().isOn(Fault::FailAfter));
    EXPECT_FALSE(host.write(working, 2));
    EXPECT_FALSE(host.computer.faults().isOn(Fault::FailAfter));
    EXPECT_EQ(host.computer.peek(working), 1);
    expectEverythingWorks(host);

    host.computer.faults().switchOn(Fault::FailAfter, 0, 0);
    EXPECT_EQ(host.read(working), std::nullopt);
    expectEverythingWorks(host);
}
