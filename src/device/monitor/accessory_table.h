#pragma once

#include "device/ec_registers.h"

#include <QtGlobal>

#include <algorithm>
#include <iterator>

namespace tarnDeviceInfos {

// An accessory that the service knows: the EC's code, the name that clients are told, and the log texts at
// the first detection and at a change.
struct AccessoryKind
{
    quint8 code;
    const char *name;
    bool isGraphicsBox;
    const char *foundAtFirst;
    const char *foundAtChange;
};

inline constexpr AccessoryKind accessoryTable[] = {
    {ACCESSORY_DOCK, "dock", false, "Connected accessory is dock!", "now Accessory is dock"},
    {ACCESSORY_GRAPHICS, "graphics", true, "Connected accessory is graphics!", "now Accessory is graphics"},
    {ACCESSORY_GRAPHICS_16G, "graphics", true, "Connected accessory is graphics16G!",
        "now Accessory is graphics"},
    {ACCESSORY_KVANE, "k_vane", false, "Connected accessory is k_Vane!", "now Accessory is k_vane"},
};

// What clients are told when nothing is attached.
inline constexpr char noAccessoryName[] = "disconnected";

// Null for an unknown code.
[[nodiscard]] constexpr const AccessoryKind *findAccessory(quint8 code)
{
    const auto *const found = std::find_if(std::begin(accessoryTable), std::end(accessoryTable),
        [code](const AccessoryKind &kind) { return kind.code == code; });
    return found == std::end(accessoryTable) ? nullptr : found;
}

} // namespace tarnDeviceInfos
