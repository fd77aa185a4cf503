#include "simulator/simulated_ec.h"

#include "device/ec_registers.h"

#include <utility>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::uint8_t emptyBusByte = 0xFF; // what a port without a device reads as

} // namespace

SimulatedEc::SimulatedEc(MachineState &state, NowMs clock)
    : nowMs(std::move(clock))
    , faults(state)
    , registers(state, nowMs, faults)
    , channel(state, nowMs, registers)
    , channelFaults(state, nowMs, faults, channel)
    , otherBits(state)
{ }

void SimulatedEc::writePort(std::uint16_t port, std::uint8_t value)
{
    if (port != EC_CMD_STATUS_PORT && port != EC_DATA_PORT)
        return;
    channelFaults.letEcWork();
    channelFaults.beginByte();
    if (port == EC_CMD_STATUS_PORT)
        channel.writeCommand(value);
    else
        channel.writeData(value);
    channelFaults.letEcWork();
}

std::uint8_t SimulatedEc::readPort(std::uint16_t port)
{
    if (port == EC_CMD_STATUS_PORT)
        return readStatus();
    if (port == EC_DATA_PORT) {
        channelFaults.letEcWork();
        return channel.readData();
    }
    return emptyBusByte;
}

std::uint8_t SimulatedEc::readStatus()
{
    registers.advance();
    channelFaults.letEcWork();
    const int outputFull = channelFaults.showsOutputFull() ? OBF : 0;
    const int inputFull = channelFaults.showsInputFull() ? IBF : 0;
    channelFaults.endStatusRead();
    return static_cast<std::uint8_t>(otherBits.next() | outputFull | inputFull);
}

} // namespace tarnSimulator
