#include "simulator/device_tree.h"

#include "device/ec_registers.h"
#include "simulator/shared_text.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

// Constant-initialised, because the port library may make a machine while it is being loaded.
struct FactoryDevice
{
    std::string_view name;
    DeviceKind kind;
    DevicePlace place;
    bool started;
    std::uint32_t problem;
    std::string_view description;
    std::string_view hardwareId;
    std::string_view instanceId;
};

// The GPU is disabled at first, so that the service has to enable it when the box is attached.
constexpr FactoryDevice factoryDevices[] = {
    {"graphics", DeviceKind::Display, DevicePlace::Computer, true, 0, "Intel(R) Iris(R) Xe Graphics",
        "PCI\\VEN_8086&DEV_A7A0&SUBSYS_00000000&REV_04", "PCI\\VEN_8086&DEV_A7A0\\3&11583659&0&10"},
    {"gpu", DeviceKind::Display, DevicePlace::Box, false, problemDisabled, "NVIDIA GeForce RTX 4060 Ti",
        "PCI\\VEN_10DE&DEV_2803&SUBSYS_00000000&REV_A1", "PCI\\VEN_10DE&DEV_2803\\4&2B1F0D8C&0&0008"},
    {"audio", DeviceKind::Audio, DevicePlace::Computer, true, 0, "High Definition Audio Device",
        "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0256", "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0256\\4&36A1B9C2&0&0001"},
    {"gpu-audio", DeviceKind::Audio, DevicePlace::Box, true, 0, "NVIDIA High Definition Audio",
        "HDAUDIO\\FUNC_01&VEN_10DE&DEV_00A5", "HDAUDIO\\FUNC_01&VEN_10DE&DEV_00A5\\5&1D2E3F4A&0&0001"},
};

} // namespace

void DeviceTree::reset()
{
    for (std::int32_t slot = 0; slot < static_cast<std::int32_t>(deviceSlots); ++slot)
        remove(slot);
    std::int32_t slot = 0;
    for (const FactoryDevice &device : factoryDevices) {
        store(slot++,
            {std::string(device.name), device.kind, device.place, device.started, device.problem,
                std::string(device.description), std::string(device.hardwareId),
                std::string(device.instanceId)});
    }
}

std::vector<std::int32_t> DeviceTree::allSlots() const
{
    std::vector<std::int32_t> found;
    for (std::int32_t slot = 0; slot < static_cast<std::int32_t>(deviceSlots); ++slot) {
        if (at(slot).used.load() != 0)
            found.push_back(slot);
    }
    return found;
}

std::vector<std::int32_t> DeviceTree::presentSlots() const
{
    std::vector<std::int32_t> found;
    for (const std::int32_t slot : allSlots()) {
        if (isPresent(at(slot)))
            found.push_back(slot);
    }
    return found;
}

std::optional<std::int32_t> DeviceTree::find(std::string_view name) const
{
    for (const std::int32_t slot : allSlots()) {
        if (loadText(at(slot).name) == name)
            return slot;
    }
    return std::nullopt;
}

Device DeviceTree::device(std::int32_t slot) const
{
    const DeviceSlotState &shared = at(slot);
    return {loadText(shared.name), static_cast<DeviceKind>(shared.kind.load()),
        static_cast<DevicePlace>(shared.place.load()), shared.started.load() != 0, shared.problem.load(),
        loadText(shared.description), loadText(shared.hardwareId), loadText(shared.instanceId)};
}

void DeviceTree::store(std::int32_t slot, const Device &device)
{
    DeviceSlotState &shared = at(slot);
    storeText(shared.name, device.name);
    storeText(shared.description, device.description);
    storeText(shared.hardwareId, device.hardwareId);
    storeText(shared.instanceId, device.instanceId);
    shared.kind.store(static_cast<std::uint8_t>(device.kind));
    shared.place.store(static_cast<std::uint8_t>(device.place));
    shared.problem.store(device.problem);
    shared.started.store(device.started ? 1 : 0);
    shared.used.store(1);
}

std::optional<std::int32_t> DeviceTree::add(const Device &device)
{
    for (std::int32_t slot = 0; slot < static_cast<std::int32_t>(deviceSlots); ++slot) {
        if (at(slot).used.load() == 0) {
            store(slot, device);
            return slot;
        }
    }
    return std::nullopt;
}

void DeviceTree::remove(std::int32_t slot)
{
    at(slot).used.store(0);
}

void DeviceTree::enable(std::int32_t slot)
{
    DeviceSlotState &shared = at(slot);
    std::uint32_t disabled = problemDisabled;
    shared.problem.compare_exchange_strong(disabled, 0);
    shared.started.store(shared.problem.load() == 0 ? 1 : 0);
}

void DeviceTree::disable(std::int32_t slot)
{
    at(slot).problem.store(problemDisabled);
    at(slot).started.store(0);
}

void DeviceTree::restartByInstaller(std::int32_t slot, bool start)
{
    at(slot).problem.store(start ? 0 : problemDisabled);
    at(slot).started.store(start ? 1 : 0);
}

bool DeviceTree::isPresent(const DeviceSlotState &slot) const
{
    switch (static_cast<DevicePlace>(slot.place.load())) {
    case DevicePlace::Computer:
        return true;
    case DevicePlace::Box: {
        const std::uint8_t code = machine.xdata[ACCESSORY_CODE].load();
        return machine.xdata[MCU_LINK_STATUS].load() == MCU_LINKED
            && (code == ACCESSORY_GRAPHICS || code == ACCESSORY_GRAPHICS_16G);
    }
    case DevicePlace::Nowhere:
        break;
    }
    return false;
}

} // namespace tarnSimulator
