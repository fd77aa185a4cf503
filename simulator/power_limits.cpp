#include "simulator/power_limits.h"

#include "device/ec_registers.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

struct Limit
{
    std::uint16_t address;
    std::uint16_t checkAddress;
    std::uint8_t automatic; // watts
};

constexpr Limit limits[] = {
    {EC_POWERMODE_PL1, EC_POWERMODE_PL1_CHECK, 28},
    {EC_POWERMODE_PL2, EC_POWERMODE_PL2_CHECK, 30},
    {EC_POWERMODE_PL4, EC_POWERMODE_PL4_CHECK, 55},
};

constexpr std::uint8_t noLimit = 255; // watts

std::uint8_t limitInForce(const MachineState &machine, const Limit &limit)
{
    switch (machine.xdata[EC_POWERMODE_PL_CTRL].load()) {
    case PL_CTRL_MANUAL:
        return machine.xdata[limit.address].load();
    case PL_CTRL_UNLIMITED:
        return noLimit;
    default:
        return limit.automatic;
    }
}

} // namespace

void PowerLimits::restore(MachineState &machine)
{
    machine.xdata[EC_POWERMODE_PL_CTRL].store(PL_CTRL_AUTO);
    for (const Limit &limit : limits)
        machine.xdata[limit.address].store(limit.automatic);
    apply(machine);
}

void PowerLimits::apply(MachineState &machine)
{
    for (const Limit &limit : limits)
        machine.xdata[limit.checkAddress].store(limitInForce(machine, limit));
}

std::uint8_t PowerLimits::readBack(std::uint16_t address, std::uint8_t value) const
{
    const bool reportsLimit = std::any_of(std::begin(limits), std::end(limits),
        [address](const Limit &limit) { return limit.checkAddress == address; });
    if (!reportsLimit)
        return value;
    const int offset = faults.value(Fault::ReadbackOffset).value_or(0);
    return static_cast<std::uint8_t>(std::clamp(value + offset, 0, 255));
}

} // namespace tarnSimulator
