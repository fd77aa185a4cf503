#pragma once

#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/accessory_mcu.h"
#include "simulator/colour.h"
#include "simulator/desktop.h"
#include "simulator/device_tree.h"
#include "simulator/event_queue.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"
#include "simulator/register_log.h"

#include <array>
#include <cstdint>

namespace tarnSimulator {

using SerialNumber = std::array<std::uint8_t, serialNumberLength>;

struct GpuReports
{
    std::uint32_t count = 0;
    std::uint8_t gpuDriverData = 0; // of the last report
};

// What a user or a test does to the machine from outside, whether the EC runs or not.
class ComputerControl
{
public:
    static constexpr AppEvent gpuKeyEvent {
        tarnDeviceInfos::APP_EVENT_GPU_KEY, tarnDeviceInfos::APP_EVENT_DATA_DISENGAGE};

    explicit ComputerControl(MachineState &state);

    void reset();

    void attach(const Accessory &accessory);
    void detach();
    [[nodiscard]] bool isAttached() const;
    void setLinkStatus(std::uint8_t status);

    void setHostBattery(std::uint8_t level);
    void setHostCharging(std::uint8_t status);
    void setKvaneBattery(std::uint8_t level);
    void setKvaneCharging(std::uint8_t status);
    void setPowerSupplyMode(std::uint8_t mode);
    void setTarnPowerMode(std::uint8_t mode);
    // As if the host had written it: the limits in force change with it.
    void setPowerControl(std::uint8_t mode);
    void setHardwareVersion(std::uint8_t version);
    void setMcuVersion(std::uint8_t major, std::uint8_t minor, std::uint8_t patch);
    void setSmartCharging(bool on);

    void setDockLight(Colour colour);
    [[nodiscard]] Colour dockLight() const;
    void setGraphicsLight(Colour colour);
    [[nodiscard]] Colour graphicsLight() const;
    void setKvaneLed(std::uint8_t value);
    [[nodiscard]] std::uint8_t kvaneLed() const;
    // In the order of the mailbox bytes, which is the reverse of how it is printed.
    void setKvaneSerialNumber(const SerialNumber &bytes);
    [[nodiscard]] SerialNumber kvaneSerialNumber() const;
    [[nodiscard]] GpuReports gpuReports() const;
    [[nodiscard]] McuMode mcuMode() const { return mcu.mode(); }
    [[nodiscard]] std::vector<std::uint8_t> mcuFlash() const;

    // False when too many events wait already.
    [[nodiscard]] bool pressGpuKey();
    [[nodiscard]] bool armEvent(AppEvent event);
    [[nodiscard]] std::vector<AppEvent> armedEvents() const;

    [[nodiscard]] std::uint8_t peek(std::uint16_t address) const;
    void poke(std::uint16_t address, std::uint8_t value);
    [[nodiscard]] std::uint8_t peekEeprom(std::uint8_t offset) const;
    void pokeEeprom(std::uint8_t offset, std::uint8_t value);

    [[nodiscard]] FaultPanel &faults() { return faultPanel; }
    [[nodiscard]] const FaultPanel &faults() const { return faultPanel; }
    [[nodiscard]] const RegisterLog &registerLog() const { return log; }
    [[nodiscard]] DeviceTree &devices() { return deviceTree; }
    [[nodiscard]] const DeviceTree &devices() const { return deviceTree; }
    [[nodiscard]] Desktop &desktop() { return userDesktop; }
    [[nodiscard]] const Desktop &desktop() const { return userDesktop; }
    [[nodiscard]] TimingState &timing() { return machine.timing; }
    [[nodiscard]] const TimingState &timing() const { return machine.timing; }
    [[nodiscard]] const CounterState &counters() const { return machine.counters; }
    [[nodiscard]] MachineState &state() { return machine; }
    [[nodiscard]] const MachineState &state() const { return machine; }

private:
    MachineState &machine;
    FaultPanel faultPanel;
    DeviceTree deviceTree;
    Desktop userDesktop;
    EventQueue events;
    RegisterLog log;
    AccessoryMcu mcu;
};

} // namespace tarnSimulator
