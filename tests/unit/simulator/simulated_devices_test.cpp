#include "platform/device_manager.h"
#include "support/simulated_machine.h"

using tarnPlatform::DeviceManager;
using tarnPlatform::DeviceProperty;

// What the list of the simulated machine's devices says of their texts, as the system's own would.
class SimulatedDevices : public tarnTest::MachineTest
{
protected:
    SimulatedDevices()
    {
        auto devices = machine.computer.devices();
        const auto slot = *devices.find("graphics");
        tarnSimulator::Device changed = devices.device(slot);
        changed.description = "ten signs.";
        changed.hardwareId = "eight.id";
        changed.instanceId = "instance";
        devices.store(slot, changed);
        adapters = DeviceManager::system().displayAdapters(DeviceManager::Text::Ansi);
        adapter = adapters ? adapters->next() : nullptr;
    }

    std::unique_ptr<tarnPlatform::DeviceList> adapters;
    tarnPlatform::Device *adapter = nullptr;
};

TEST_F(SimulatedDevices, TextsNeedRoomForTheirEnd)
{
    ASSERT_TRUE(adapter);
    EXPECT_EQ(adapter->ansiText(DeviceProperty::Description, 11), QByteArray("ten signs."));
    EXPECT_EQ(adapter->ansiText(DeviceProperty::Description, 10), std::nullopt);
    EXPECT_EQ(adapter->ansiText(DeviceProperty::HardwareIds, 9), QByteArray("eight.id"));
    EXPECT_EQ(adapter->ansiText(DeviceProperty::HardwareIds, 8), std::nullopt);
    EXPECT_EQ(adapter->wideDescription(22), QString("ten signs."));
    EXPECT_EQ(adapter->wideDescription(21), std::nullopt);
    EXPECT_EQ(adapter->instanceId(9), QString("instance"));
    EXPECT_EQ(adapter->instanceId(8), std::nullopt);
}

TEST_F(SimulatedDevices, AListEndsAndStaysAtItsEnd)
{
    ASSERT_TRUE(adapter);
    EXPECT_FALSE(adapters->next()); // there is no box attached
    EXPECT_FALSE(adapters->next());
}
