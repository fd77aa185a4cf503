#pragma once

#include "simulator/fault_table.h"
#include "simulator/machine_state.h"
#include "simulator/register_access.h"

#include <optional>

namespace tarnSimulator {

// The fault switches of the machine. They are set from outside and take effect at the EC's next step.
class FaultPanel
{
public:
    explicit FaultPanel(MachineState &state)
        : switches(state.faults)
        , seen(state.faultsSeen)
    { }

    // `skip` accesses still succeed before one of the fail- faults strikes.
    void switchOn(Fault fault, std::int32_t value = 0, std::uint32_t skip = 0);
    void switchOff(Fault fault);
    void clear();

    [[nodiscard]] bool isOn(Fault fault) const;
    // True when any program has switched it on since power-on.
    [[nodiscard]] bool wasOn(Fault fault) const;
    // Empty while the fault is off.
    [[nodiscard]] std::optional<std::int32_t> value(Fault fault) const;
    [[nodiscard]] std::uint32_t remaining(Fault fault) const;

    // To be called once for every access of the EC, because it counts down the accesses that still succeed.
    [[nodiscard]] bool refuses(AccessKind kind, std::uint16_t address);
    // To be called once for every call of the host to its device manager.
    [[nodiscard]] bool refusesDevice(Fault fault, std::int32_t deviceSlot);
    [[nodiscard]] bool refusesList();

private:
    [[nodiscard]] FaultState &slot(Fault fault) { return switches[static_cast<std::size_t>(fault)]; }
    [[nodiscard]] const FaultState &slot(Fault fault) const
    {
        return switches[static_cast<std::size_t>(fault)];
    }
    [[nodiscard]] bool strikesAt(Fault fault, std::uint16_t address);
    [[nodiscard]] bool strikesOnce();

    std::array<FaultState, faultSlots> &switches;
    SharedLong &seen;
};

} // namespace tarnSimulator
