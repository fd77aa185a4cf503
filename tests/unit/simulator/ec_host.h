#pragma once

#include "device/ec_registers.h"
#include "simulator/computer_control.h"
#include "simulator/power_on.h"
#include "simulator/simulated_ec.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace tarnSimulatorTest {

// A simulated machine on a clock of its own, and a host that waits for it as the service's driver does: up to
// 1000 status reads, 5 ms apart.
class EcHost
{
public:
    static constexpr int maximumPolls = 1000;
    static constexpr std::uint64_t pollMs = 5;

    EcHost()
        : state(std::make_unique<tarnSimulator::MachineState>())
        , ec(std::make_unique<tarnSimulator::SimulatedEc>(*state, [this] { return nowMs; }))
        , computer(*state)
    {
        tarnSimulator::initialiseState(*state);
    }

    void sendCommand(std::uint8_t command) { ec->writePort(tarnDeviceInfos::EC_CMD_STATUS_PORT, command); }
    void sendData(std::uint8_t value) { ec->writePort(tarnDeviceInfos::EC_DATA_PORT, value); }
    [[nodiscard]] std::uint8_t takeData() { return ec->readPort(tarnDeviceInfos::EC_DATA_PORT); }
    [[nodiscard]] std::uint8_t wholeStatus() { return ec->readPort(tarnDeviceInfos::EC_CMD_STATUS_PORT); }
    // Of its bits, the two that are the channel's.
    [[nodiscard]] std::uint8_t status()
    {
        return wholeStatus() & (tarnDeviceInfos::OBF | tarnDeviceInfos::IBF);
    }
    [[nodiscard]] bool answerWaits() { return (status() & tarnDeviceInfos::OBF) != 0; }
    [[nodiscard]] bool inputIsFull() { return (status() & tarnDeviceInfos::IBF) != 0; }

    void beginRead(std::uint16_t address)
    {
        sendCommand(tarnDeviceInfos::XDATA_READ_CMD);
        sendData(static_cast<std::uint8_t>(address >> 8));
        sendData(static_cast<std::uint8_t>(address & 0xFF));
    }

    [[nodiscard]] std::optional<std::uint8_t> read(std::uint16_t address)
    {
        if (!sendAddress(tarnDeviceInfos::XDATA_READ_CMD, address))
            return std::nullopt;
        for (int i = 0; i < maximumPolls; ++i) {
            if (answerWaits())
                return takeData();
            nowMs += pollMs;
        }
        return std::nullopt;
    }

    [[nodiscard]] bool write(std::uint16_t address, std::uint8_t value)
    {
        if (!sendAddress(tarnDeviceInfos::XDATA_WRITE_CMD, address) || !waitForEmptyInput())
            return false;
        sendData(value);
        return true;
    }

    // What the driver's unload and reload of the port library amounts to.
    void reconnect()
    {
        ec = std::make_unique<tarnSimulator::SimulatedEc>(*state, [this] { return nowMs; });
    }

    std::uint64_t nowMs = 1000;
    std::unique_ptr<tarnSimulator::MachineState> state;
    std::unique_ptr<tarnSimulator::SimulatedEc> ec;
    tarnSimulator::ComputerControl computer;

private:
    [[nodiscard]] bool waitForEmptyInput()
    {
        for (int i = 0; i < maximumPolls; ++i) {
            if (!inputIsFull())
                return true;
            nowMs += pollMs;
        }
        return false;
    }

    [[nodiscard]] bool sendAddress(std::uint8_t command, std::uint16_t address)
    {
        for (int i = 0; i < maximumPolls && answerWaits(); ++i) {
            static_cast<void>(takeData());
            nowMs += pollMs;
        }
        if (!waitForEmptyInput())
            return false;
        sendCommand(command);
        if (!waitForEmptyInput())
            return false;
        sendData(static_cast<std::uint8_t>(address >> 8));
        if (!waitForEmptyInput())
            return false;
        sendData(static_cast<std::uint8_t>(address & 0xFF));
        return true;
    }
};

} // namespace tarnSimulatorTest
