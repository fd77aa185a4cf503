#include "platform/device_manager.h"

#include "simulator/computer_control.h"
#include "simulator/platform/simulated_computer.h"

#include <vector>

namespace tarnPlatform {
namespace {

using tarnSimulator::DeviceKind;
using tarnSimulator::DeviceTree;
using tarnSimulator::Fault;
using tarnSimulator::FaultPanel;
using tarnSimulator::MachineState;

class SimulatedDevice final : public tarnPlatform::Device
{
public:
    SimulatedDevice(MachineState &machine, std::int32_t slotNumber)
        : devices(machine)
        , faults(machine)
        , slot(slotNumber)
    { }

    std::optional<QByteArray> ansiText(DeviceProperty property, int bufferBytes) override
    {
        const bool isDescription = property == DeviceProperty::Description;
        if (faults.refusesDevice(
                isDescription ? Fault::FailDeviceDescription : Fault::FailDeviceHardwareId, slot))
            return std::nullopt;
        const tarnSimulator::Device device = devices.device(slot);
        const std::string &text = isDescription ? device.description : device.hardwareId;
        if (text.size() >= static_cast<std::size_t>(bufferBytes))
            return std::nullopt;
        return QByteArray::fromStdString(text);
    }

    std::optional<QString> wideDescription(int bufferBytes) override
    {
        if (faults.refusesDevice(Fault::FailDeviceDescription, slot))
            return std::nullopt;
        const QString text = QString::fromStdString(devices.device(slot).description);
        if ((text.size() + 1) * 2 > bufferBytes)
            return std::nullopt;
        return text;
    }

    std::optional<QString> instanceId(int bufferCharacters) override
    {
        const QString text = QString::fromStdString(devices.device(slot).instanceId);
        if (faults.refusesDevice(Fault::FailDeviceId, slot) || text.size() >= bufferCharacters)
            return std::nullopt;
        return text;
    }

    std::optional<DeviceStatus> status() override
    {
        if (faults.refusesDevice(Fault::FailDeviceStatus, slot))
            return std::nullopt;
        const tarnSimulator::Device device = devices.device(slot);
        const quint32 bits =
            (device.started ? deviceStarted : 0) | (device.problem == 0 ? 0 : deviceHasProblem);
        return DeviceStatus {bits, device.problem};
    }

    bool enable() override
    {
        if (faults.refusesDevice(Fault::FailDeviceEnable, slot))
            return false;
        devices.enable(slot);
        return true;
    }

    bool disable() override
    {
        if (faults.refusesDevice(Fault::FailDeviceDisable, slot))
            return false;
        devices.disable(slot);
        return true;
    }

    bool changeByInstaller(DeviceChange change) override
    {
        if (faults.refusesDevice(Fault::FailDeviceInstaller, slot))
            return false;
        devices.restartByInstaller(slot, change == DeviceChange::Enable);
        return true;
    }

private:
    DeviceTree devices;
    FaultPanel faults;
    const std::int32_t slot;
};

class SimulatedList final : public DeviceList
{
public:
    SimulatedList(MachineState &computer, std::vector<std::int32_t> presentSlots)
        : machine(computer)
        , devices(computer)
        , present(std::move(presentSlots))
    {
        devices.counters().listsOpened.fetch_add(1);
    }
    ~SimulatedList() override { devices.counters().listsClosed.fetch_add(1); }
    SimulatedList(const SimulatedList &) = delete;
    SimulatedList &operator=(const SimulatedList &) = delete;

    tarnPlatform::Device *next() override
    {
        if (upcoming == present.size())
            return nullptr;
        current = std::make_unique<SimulatedDevice>(machine, present[upcoming++]);
        return current.get();
    }

private:
    MachineState &machine;
    DeviceTree devices;
    const std::vector<std::int32_t> present;
    std::size_t upcoming = 0;
    std::unique_ptr<SimulatedDevice> current;
};

class SimulatedDevices final : public DeviceManager
{
public:
    std::unique_ptr<DeviceList> displayAdapters(Text) override { return open(true); }
    std::unique_ptr<DeviceList> allDevices() override { return open(false); }

private:
    static std::unique_ptr<DeviceList> open(bool onlyDisplay)
    {
        MachineState *machine = simulatedComputer();
        if (!machine || FaultPanel(*machine).refusesList())
            return nullptr;
        const DeviceTree tree(*machine);
        std::vector<std::int32_t> present = tree.presentSlots();
        if (onlyDisplay)
            std::erase_if(present,
                [&tree](std::int32_t slot) { return tree.device(slot).kind != DeviceKind::Display; });
        return std::make_unique<SimulatedList>(*machine, std::move(present));
    }
};

} // namespace

DeviceManager &DeviceManager::ofSystem()
{
    static SimulatedDevices devices;
    return devices;
}

} // namespace tarnPlatform
