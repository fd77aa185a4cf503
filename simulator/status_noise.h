#pragma once

#include "device/ec_registers.h"
#include "simulator/machine_state.h"

namespace tarnSimulator {

// The bits of the status byte other than OBF and IBF. The EC uses them for purposes of its own, so each
// status read shows pseudo-random values in them. Power-on begins the same sequence again.
class StatusNoise
{
public:
    explicit StatusNoise(MachineState &machine)
        : position(machine.statusNoise)
    { }

    [[nodiscard]] std::uint8_t next()
    {
        constexpr std::uint8_t others = 0xFF & ~(tarnDeviceInfos::OBF | tarnDeviceInfos::IBF);
        return static_cast<std::uint8_t>(mixed(position.fetch_add(step) + step) & others);
    }

private:
    static constexpr std::uint64_t step = 0x9E3779B97F4A7C15; // splitmix64
    [[nodiscard]] static constexpr std::uint64_t mixed(std::uint64_t value)
    {
        value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
        value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
        return value ^ (value >> 31);
    }

    SharedLong &position;
};

} // namespace tarnSimulator
