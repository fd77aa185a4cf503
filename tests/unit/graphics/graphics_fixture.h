#pragma once

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "graphics/graphics_accessory_manager.h"
#include "support/desktop_stand_ins.h"
#include "support/queued_messages.h"
#include "support/seen_texts.h"
#include "support/simulated_machine.h"

namespace tarnTest {

inline constexpr const char *gpuName = "gpu";

// A graphics box on the simulated machine, with a user whose answers the test chooses.
class GraphicsTest : public MachineTest
{
protected:
    // gpuDriverData
    static constexpr int gpuWithoutDriver = tarnDeviceInfos::GPU_PRESENT;
    static constexpr int gpuNotStarted = gpuWithoutDriver | tarnDeviceInfos::GPU_DRIVER_INSTALLED;
    static constexpr int gpuActive = gpuNotStarted | tarnDeviceInfos::GPU_STARTED;
    static constexpr int gpuStateUnknown = -1;
    // Problem codes of the configuration manager
    static constexpr std::uint32_t noProblem = 0;
    static constexpr std::uint32_t failedStart = 10;
    static constexpr std::uint32_t disabledDevice = 22;
    static constexpr std::uint32_t noDriverInstalled = 28;
    static constexpr std::uint32_t failedPostStart = 43;

    GraphicsTest()
        : manager(tarnAccessoryManager::GraphicsAccessoryManager::instance())
    {
        tarnDeviceInfos::EcDirverControllerHal::instance();
        tarnPipeServer::SendQueueThread::instance();
        machine.attach(tarnDeviceInfos::ACCESSORY_GRAPHICS);
        noteSeen("device", QString::fromStdString(device(gpuName).description));
        noteSeen("device", QString::fromStdString(device(gpuName).hardwareId));
        forgetPast();
    }

    // Each list of devices that was opened has been given back.
    void TearDown() override
    {
        EXPECT_EQ(machine.state->devices.listsOpened, machine.state->devices.listsClosed);
    }

    void forgetPast()
    {
        machine.log.clear();
        machine.clock.forgetWaits();
        machine.traffic();
    }

    [[nodiscard]] tarnSimulator::DeviceTree &devices() { return machine.computer.devices(); }
    [[nodiscard]] std::int32_t slot(const char *device) { return *devices().find(device); }
    [[nodiscard]] tarnSimulator::Device device(const char *name) { return devices().device(slot(name)); }
    void setCondition(const char *name, bool started, std::uint32_t problem)
    {
        tarnSimulator::Device changed = device(name);
        changed.started = started;
        changed.problem = problem;
        devices().store(slot(name), changed);
    }
    void rename(const char *name, const char *description)
    {
        tarnSimulator::Device changed = device(name);
        changed.description = description;
        noteSeen("device", description);
        devices().store(slot(name), changed);
    }
    void addDevice(const char *name, tarnSimulator::DeviceKind kind, const char *description,
        const char *hardwareId = "", const char *instanceId = "")
    {
        noteSeen("device", description);
        noteSeen("device", hardwareId);
        ASSERT_TRUE(devices().add({name, kind, tarnSimulator::DevicePlace::Computer, true, 0, description,
            hardwareId, instanceId}));
    }
    void fail(tarnSimulator::Fault fault, const char *device, std::uint32_t skip = 0)
    {
        machine.faults().switchOn(fault, slot(device), skip);
    }

    // Lets the manager handle an event as if the EC had just presented it.
    void present(quint8 code, quint8 data = 0)
    {
        ASSERT_TRUE(machine.computer.armEvent({code, data}));
        manager->handleEcAppEvent();
    }

    ScriptedSession session;
    ScriptedProcesses processes;
    tarnAccessoryManager::GraphicsAccessoryManager *manager;
};

} // namespace tarnTest
