#pragma once

#include <cstdint>

namespace tarnSimulator {

// What a value of the machine belongs to, in the order in which `tarnsim values` lists them. `tarnsim show`
// has a line for each but Accessory, which it puts into words, and Other, which it leaves out.
enum class ValueGroup : std::uint8_t {
    HostBattery,
    Kvane,
    Lights,
    Accessory,
    Power,
    Limits,
    Gpu,
    McuUpdate,
    Desktop,
    Timing,
    Other,
};

} // namespace tarnSimulator
