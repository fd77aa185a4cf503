#pragma once

#include "simulator/machine_state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnSimulator {

enum class DeviceKind : std::uint8_t { Display, Audio, Other };
// A device of the box is present while a graphics box is attached; while it is absent, its state is kept.
enum class DevicePlace : std::uint8_t { Computer, Box, Nowhere };

// Problem code of the configuration manager for a disabled device.
inline constexpr std::uint32_t problemDisabled = 22;

struct Device
{
    std::string name; // for the control tool
    DeviceKind kind = DeviceKind::Other;
    DevicePlace place = DevicePlace::Computer;
    bool started = true;
    std::uint32_t problem = 0;
    std::string description;
    std::string hardwareId;
    std::string instanceId;
};

// The devices that the host's device manager shows, in the order of their slots. The host and other programs
// may change them at the same time.
class DeviceTree
{
public:
    explicit DeviceTree(MachineState &state)
        : machine(state)
    { }

    // The devices of a computer out of the factory.
    void reset();

    [[nodiscard]] std::vector<std::int32_t> allSlots() const;
    // As the host sees them now.
    [[nodiscard]] std::vector<std::int32_t> presentSlots() const;
    [[nodiscard]] std::optional<std::int32_t> find(std::string_view name) const;
    [[nodiscard]] Device device(std::int32_t slot) const;
    void store(std::int32_t slot, const Device &device);
    // Empty when all slots are taken.
    [[nodiscard]] std::optional<std::int32_t> add(const Device &device);
    void remove(std::int32_t slot);

    // Enabling starts a device unless it has a problem other than being disabled.
    void enable(std::int32_t slot);
    void disable(std::int32_t slot);
    // A stop and start by the class installer clears any problem.
    void restartByInstaller(std::int32_t slot, bool start);

    [[nodiscard]] DeviceTreeState &counters() { return machine.devices; }

private:
    [[nodiscard]] DeviceSlotState &at(std::int32_t slot)
    {
        return machine.devices.entries[static_cast<std::size_t>(slot)];
    }
    [[nodiscard]] const DeviceSlotState &at(std::int32_t slot) const
    {
        return machine.devices.entries[static_cast<std::size_t>(slot)];
    }
    [[nodiscard]] bool isPresent(const DeviceSlotState &slot) const;

    MachineState &machine;
};

} // namespace tarnSimulator
