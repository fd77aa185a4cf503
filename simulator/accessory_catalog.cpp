#include "simulator/accessory_catalog.h"

#include "device/ec_registers.h"

#include <algorithm>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

// The versions differ in every field, so that a test notices when fields are mixed up.
constexpr Accessory catalog[] = {
    {"dock", ACCESSORY_DOCK, 2, 1, 2, 3, "dock with an LED"},
    {"graphics", ACCESSORY_GRAPHICS, 5, 2, 10, 0, "graphics box"},
    {"graphics16g", ACCESSORY_GRAPHICS_16G, 6, 3, 4, 7, "graphics box, 16 GB variant"},
    {"kvane", ACCESSORY_KVANE, 4, 2, 0, 5, "KVane accessory with battery and LED"},
};

template <typename Predicate> const Accessory *findIf(Predicate matches)
{
    const auto found = std::find_if(std::begin(catalog), std::end(catalog), matches);
    return found == std::end(catalog) ? nullptr : found;
}

} // namespace

std::span<const Accessory> accessoryCatalog()
{
    return catalog;
}

const Accessory *findAccessory(std::string_view name)
{
    return findIf([name](const Accessory &row) { return row.name == name; });
}

const Accessory *findAccessory(std::uint8_t code)
{
    return findIf([code](const Accessory &row) { return row.code == code; });
}

std::uint8_t linkedAccessory(const MachineState &state)
{
    const bool linked = state.xdata[MCU_LINK_STATUS].load() == MCU_LINKED;
    return linked ? state.xdata[ACCESSORY_CODE].load() : ACCESSORY_NONE;
}

Accessory unknownAccessory(std::uint8_t code)
{
    return {"unknown", code, 1, 0, 0, 1, "a device that no host software knows"};
}

} // namespace tarnSimulator
