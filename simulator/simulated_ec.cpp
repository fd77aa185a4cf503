#include "simulator/simulated_ec.h"

#include "device/ec_registers.h"

#include <utility>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::uint8_t NOBODY_ANSWERS = 0xFF;

} // namespace

SimulatedEc::SimulatedEc(MachineState &state, NowMs clock)
    : nowMs(std::move(clock))
    , faults(state)
    , registers(state, nowMs, faults)
    , channel(state, nowMs, faults, registers)
{ }

void SimulatedEc::writePort(std::uint16_t port, std::uint8_t value)
{
    if (port == EC_CMD_STATUS_PORT) {
        channel.writeCommand(value);
    } else if (port == EC_DATA_PORT) {
        channel.writeData(value);
    }
}

std::uint8_t SimulatedEc::readPort(std::uint16_t port)
{
    if (port == EC_CMD_STATUS_PORT) {
        return channel.readStatus();
    }
    if (port == EC_DATA_PORT) {
        return channel.readData();
    }
    return NOBODY_ANSWERS;
}

} // namespace tarnSimulator
