#pragma once

#include "device/ec_registers.h"

#include <QtGlobal>

#include <algorithm>
#include <iterator>

namespace tarnDeviceInfos {

// An accessory that the service knows: the EC's code, the name that is sent to clients, and the log texts at
// the first detection and at a change.
struct AccessoryKind
{
    quint8 code;
    bool isGraphicsBox;
    const char *name;
    const char *foundAtFirst;
    const char *foundAtChange;
};

inline constexpr AccessoryKind accessoryTable[] = {
    {ACCESSORY_DOCK, false, "dock", "Connected accessory is dock!", "now Accessory is dock"},
    {ACCESSORY_GRAPHICS, true, "graphics", "Connected accessory is graphics!", "now Accessory is graphics"},
    {ACCESSORY_GRAPHICS_16G, true, "graphics", "Connected accessory is graphics16G!",
        "now Accessory is graphics"},
    {ACCESSORY_KVANE, false, "k_vane", "Connected accessory is k_Vane!", "now Accessory is k_vane"},
};

// The name that is sent to clients when nothing is attached.
inline constexpr char noAccessoryName[] = "disconnected";

// Null for an unknown code.
[[nodiscard]] constexpr const AccessoryKind *findAccessory(quint8 code)
{
    const auto *const found = std::find_if(std::begin(accessoryTable), std::end(accessoryTable),
        [code](const AccessoryKind &kind) { return kind.code == code; });
    return found == std::end(accessoryTable) ? nullptr : found;
}

} // namespace tarnDeviceInfos
