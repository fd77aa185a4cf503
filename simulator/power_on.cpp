#include "simulator/power_on.h"

#include "device/ec_registers.h"
#include "simulator/accessory_mcu.h"
#include "simulator/desktop.h"
#include "simulator/device_tree.h"
#include "simulator/power_limits.h"
#include "simulator/register_table.h"
#include "simulator/replay/replay_control.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::uint8_t erasedEepromByte = 0xFF;
constexpr std::uint32_t white = 0xFFFFFF;
constexpr std::uint32_t dockLightOn = 0x010000; // only red 1 or 0 carries the dock's LED state

constexpr std::array<std::uint8_t, serialNumberLength> serialNumber {
    0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD};

// Both mailboxes answer within the 10 ms that the host waits before it reads the status.
constexpr std::uint32_t eepromBusyMs = 6;
constexpr std::uint32_t mailboxBusyMs = 5;
// The host gives a byte up after this many status reads.
constexpr std::uint32_t refusedWritePolls = 1000;

template <std::size_t size> void fill(std::array<SharedByte, size> &bytes, std::uint8_t value)
{
    for (SharedByte &byte : bytes)
        byte.store(value, std::memory_order_relaxed);
}

void resetMemories(MachineState &state)
{
    fill(state.xdata, 0);
    for (const Register &row : registerTable()) {
        if (row.atPowerOn != 0) // else a further name of a register would clear it again
            state.xdata[row.address].store(row.atPowerOn);
    }
    PowerLimits::restore(state);
    fill(state.eeprom, erasedEepromByte);
    state.eeprom[EEP_SMART_CHARGING].store(SMART_CHARGING_ON);
}

void resetAccessory(AccessoryState &accessory)
{
    accessory.dockLight.store(dockLightOn);
    accessory.graphicsLight.store(white);
    accessory.gpuReports.store(0);
    accessory.gpuDriverData.store(0);
    accessory.kvaneLed.store(0);
    for (std::size_t i = 0; i < serialNumberLength; ++i)
        accessory.kvaneSerialNumber[i].store(serialNumber[i]);
}

void resetCounters(CounterState &counters)
{
    SharedLong *const all[] = {&counters.reads, &counters.writes, &counters.commands,
        &counters.abortedCommands, &counters.refusedAccesses, &counters.libraryLoads,
        &counters.writtenWhileFull};
    for (SharedLong *counter : all)
        counter->store(0);
}

} // namespace

void initialiseState(MachineState &state)
{
    powerOn(state);
    state.header.size.store(sizeof(MachineState));
    state.header.version.store(stateVersion);
    state.header.magic.store(stateMagic);
}

void powerOn(MachineState &state)
{
    for (FaultState &fault : state.faults) {
        fault.on.store(0);
        fault.value.store(0);
        fault.remaining.store(0);
    }
    state.faultsSeen.store(0);
    state.statusNoise.store(0);
    for (SharedLong &slot : state.events.waiting)
        slot.store(0);
    state.eepromMailbox.operation.store(0);
    state.applicationMailbox.busy.store(0);
    state.applicationMailbox.pending.store(0);
    state.timing.eepromBusyMs.store(eepromBusyMs);
    state.timing.mailboxBusyMs.store(mailboxBusyMs);
    state.timing.refusedWritePolls.store(refusedWritePolls);
    state.timing.acceptancePolls.store(0);
    endReplay(state);
    resetAccessory(state.accessory);
    resetCounters(state.counters);
    resetMemories(state);
    DeviceTree(state).reset();
    Desktop(state).reset();
    AccessoryMcu(state).restore();
}

} // namespace tarnSimulator
