#include "simulator/power_limits.h"

#include "device/ec_registers.h"

#include <algorithm>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

struct Limit
{
    std::uint16_t address;
    std::uint16_t checkAddress;
};

constexpr Limit LIMITS[] = {
    {EC_POWERMODE_PL1, EC_POWERMODE_PL1_CHECK},
    {EC_POWERMODE_PL2, EC_POWERMODE_PL2_CHECK},
    {EC_POWERMODE_PL4, EC_POWERMODE_PL4_CHECK},
};

} // namespace

void PowerLimits::latch(std::uint16_t limitAddress)
{
    for (const Limit &limit : LIMITS) {
        if (limit.address == limitAddress) {
            state.xdata[limit.checkAddress].store(state.xdata[limitAddress].load());
        }
    }
}

std::uint8_t PowerLimits::readBack(std::uint8_t value) const
{
    const int offset = faults.value(Fault::ReadbackOffset).value_or(0);
    return static_cast<std::uint8_t>(std::clamp(value + offset, 0, 255));
}

} // namespace tarnSimulator
