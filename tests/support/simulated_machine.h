#pragma once

#include "simulator/computer_control.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"
#include "simulator/simulated_ec.h"
#include "support/log_capture.h"
#include "support/port_backend.h"
#include "support/run_folder.h"
#include "support/virtual_clock.h"
#include "support/whole_exchanges.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

namespace tarnTest {

// The simulated computer behind the driver's port library, on virtual time, with the log captured.
class SimulatedMachine : public PortBackend
{
public:
    SimulatedMachine();
    ~SimulatedMachine() override;

    void out(std::uint16_t port, std::uint8_t value) override { ec.writePort(port, value); }
    std::uint8_t in(std::uint16_t port) override { return ec.readPort(port); }

    [[nodiscard]] tarnSimulator::FaultPanel faults() { return tarnSimulator::FaultPanel(*state); }

    // Attaches one of the known accessories, by its code.
    void attach(std::uint8_t accessoryCode);

    // Register accesses since the last call, as "R 06A0 04" and "W 04B0 12", addresses and values in hex.
    QStringList traffic();
    // The same with the virtual milliseconds since the last call in front: "20 R 06A0 04".
    QStringList timeline();

    RunFolder folder;
    VirtualClock clock;
    LogCapture log;
    std::unique_ptr<tarnSimulator::MachineState> state;
    tarnSimulator::SimulatedEc ec;
    tarnSimulator::ComputerControl computer;

private:
    QStringList accesses(bool withTime);

    std::uint64_t cursor = 0;
    std::uint64_t cursorTime = 0;
};

class MachineTest : public ::testing::Test
{
protected:
    ~MachineTest() override { EXPECT_EQ(brokenExchanges(*machine.state), QString()); }

    SimulatedMachine machine;
};

} // namespace tarnTest
