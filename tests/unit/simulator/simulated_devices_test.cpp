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
        found = adapters && adapters->next();
    }

    std::unique_ptr<tarnPlatform::DeviceList> adapters;
    bool found = false;
};

TEST_F(SimulatedDevices, TextsNeedRoomForTheirEnd)
{
    ASSERT_TRUE(found);
    EXPECT_EQ(adapters->ansiText(DeviceProperty::Description, 11), QByteArray("ten signs."));
    EXPECT_EQ(adapters->ansiText(DeviceProperty::Description, 10), std::nullopt);
    EXPECT_EQ(adapters->ansiText(DeviceProperty::HardwareIds, 9), QByteArray("eight.id"));
    EXPECT_EQ(adapters->ansiText(DeviceProperty::HardwareIds, 8), std::nullopt);
    EXPECT_EQ(adapters->wideDescription(22), QString("ten signs."));
    EXPECT_EQ(adapters->wideDescription(21), std::nullopt);
    EXPECT_EQ(adapters->instanceId(9), QString("instance"));
    EXPECT_EQ(adapters->instanceId(8), std::nullopt);
}

TEST_F(SimulatedDevices, AListEndsAndStaysAtItsEnd)
{
    ASSERT_TRUE(found);
    EXPECT_FALSE(adapters->next()); // there is no box attached
    EXPECT_FALSE(adapters->next());
    EXPECT_EQ(adapters->wideDescription(512), QString("ten signs."));
}
