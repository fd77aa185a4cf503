#pragma once

#include "simulator/machine_state.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tarnSimulator {

// An accessory as the EC reports it once it is linked.
struct Accessory
{
    std::string_view name;
    std::uint8_t code;
    std::uint8_t hardwareVersion;
    std::uint8_t mcuMajor;
    std::uint8_t mcuMinor;
    std::uint8_t mcuPatch;
    std::string_view help;
};

[[nodiscard]] std::span<const Accessory> accessoryCatalog();
// Null when there is no accessory of that name, or with that code.
[[nodiscard]] const Accessory *findAccessory(std::string_view name);
[[nodiscard]] const Accessory *findAccessory(std::uint8_t code);
// The code of the accessory that is attached and linked, else ACCESSORY_NONE.
[[nodiscard]] std::uint8_t linkedAccessory(const MachineState &state);
// A device that no host software knows.
[[nodiscard]] Accessory unknownAccessory(std::uint8_t code);

} // namespace tarnSimulator
