#pragma once

#include "simulator/boot_loader_state.h"
#include "simulator/replay/replay_state.h"
#include "simulator/shared_values.h"

#include <array>
#include <cstddef>
#include <cstdint>

// The complete state of the simulated computer. It lies in a memory-mapped file that the port library, the
// control tool and tests have open at the same time, as native programs and as Windows programs. So it holds
// nothing but lock-free atomics of fixed width at fixed places: no pointers, and no lock that a killed
// process could leave held.
namespace tarnSimulator {

inline constexpr std::uint32_t stateMagic = 0x43535254; // "TRSC" in a dump of the file
// Raised whenever the meaning or the place of something below changes. Not needed for a feature that only
// takes bytes out of `growth`, if zero means what older programs assumed.
inline constexpr std::uint32_t stateVersion = 3;

inline constexpr std::size_t xdataSize = 0x10000;
inline constexpr std::size_t eepromSize = 0x100;
inline constexpr std::size_t eventSlots = 16;
inline constexpr std::size_t faultSlots = 64;
inline constexpr std::size_t logEntries = 4096;
inline constexpr std::size_t serialNumberLength = 7;
inline constexpr std::size_t deviceSlots = 16;
inline constexpr std::size_t deviceNameSize = 32; // sizes of texts count their final zero
inline constexpr std::size_t deviceTextSize = 128;
inline constexpr std::size_t guiSwitchSize = 64;
inline constexpr std::size_t growthSize = 0x6000 - 32 - sizeof(ReplayState);

struct StateHeader
{
    SharedWord magic;
    SharedWord version;
    SharedWord size; // of the whole state
    SharedWord reserved;
};

// Second host channel, as the EC firmware sees it. The enumerations of the byte fields belong to EcChannel.
struct EcChannelState
{
    SharedLong inputSinceMs;
    SharedLong answerSinceMs;
    SharedWord reservedWord;
    SharedHalf address;
    SharedHalf answerAddress;
    SharedByte phase;
    SharedByte inputKind;
    SharedByte inputValue;
    SharedByte answerState;
    SharedByte answerValue;
    std::array<SharedByte, 3> reserved;
};

// How long the EC leaves the byte in the input buffer.
struct InputHoldState
{
    SharedWord statusReadsLeft; // status reads for which it stays there
    SharedByte refused; // 1: the byte is dropped then, with the exchange that it belongs to
    std::array<SharedByte, 3> reserved;
};

struct EepromMailboxState
{
    SharedLong sinceMs;
    SharedByte operation;
    SharedByte offset;
    SharedByte value;
    SharedByte errorStatus;
    std::array<SharedByte, 4> reserved;
};

struct ApplicationMailboxState
{
    SharedLong sinceMs;
    SharedByte busy;
    SharedByte pending; // the command that has still to be finished, 0: none
    std::array<SharedByte, 6> reserved;
};

struct AccessoryState
{
    SharedWord dockLight; // colours are 0x00RRGGBB
    SharedWord graphicsLight;
    SharedWord gpuReports; // GPU state reports received
    SharedByte gpuDriverData; // the last of them
    SharedByte kvaneLed;
    std::array<SharedByte, 2> reserved;
    std::array<SharedByte, serialNumberLength> kvaneSerialNumber; // in the order of the mailbox bytes
    SharedByte reservedEnd;
};

// Each used slot holds ticket << 16 | data << 8 | code, an empty one 0. Tickets count from 1 and give the
// order.
struct EventQueueState
{
    SharedLong lastTicket;
    std::array<SharedLong, eventSlots> waiting;
};

struct FaultState
{
    SharedWord on;
    SharedInt value;
    SharedWord remaining; // accesses that still succeed before the fault strikes
    SharedWord reserved;
};

struct TimingState
{
    SharedWord eepromBusyMs;
    SharedWord mailboxBusyMs;
    SharedWord refusedWritePolls;
    SharedWord acceptancePolls; // status reads for which IBF stays set after each byte
};

struct CounterState
{
    SharedLong reads; // completed register reads
    SharedLong writes; // completed register writes
    SharedLong commands; // command bytes taken, known or not
    SharedLong abortedCommands;
    SharedLong refusedAccesses; // by one of the fail- faults
    SharedLong libraryLoads;
    SharedLong writtenWhileFull; // bytes that the host wrote although IBF was set
    SharedLong reserved;
};

// `stamp` is the number of the access, counted from 1, or 0 while the entry is being written.
struct LogEntryState
{
    SharedLong stamp;
    SharedLong timeMs;
    SharedWord access; // kind << 24 | address << 8 | value
    SharedWord reserved;
};

struct RegisterLogState
{
    SharedLong lastStamp;
    std::array<LogEntryState, logEntries> entries;
};

// A device as the device manager of the host shows it. The enumerations of the byte fields belong to
// DeviceTree.
struct DeviceSlotState
{
    SharedByte used;
    SharedByte kind;
    SharedByte place;
    SharedByte started;
    SharedWord problem; // problem code of the configuration manager, 0: none
    std::array<SharedByte, deviceNameSize> name; // for the control tool
    std::array<SharedByte, deviceTextSize> description;
    std::array<SharedByte, deviceTextSize> hardwareId;
    std::array<SharedByte, deviceTextSize> instanceId;
};

struct DeviceTreeState
{
    SharedWord listsOpened; // by the host; equal to listsClosed whenever it is not at work on devices
    SharedWord listsClosed;
    std::array<DeviceSlotState, deviceSlots> entries;
};

// The user's side of the host: the session of the service, and what the stand-in for the GUI program does.
struct DesktopState
{
    SharedWord serviceSession; // 1: the service runs in session 0
    SharedInt guiAnswer; // exit code, or Desktop::waits while it is left open
    SharedWord guiShown; // programs started so far
    SharedWord guiOpen; // of them still open
    std::array<SharedByte, guiSwitchSize> guiSwitch; // of the last one
};

struct MachineState
{
    StateHeader header;
    EcChannelState channel;
    EepromMailboxState eepromMailbox;
    ApplicationMailboxState applicationMailbox;
    AccessoryState accessory;
    TimingState timing;
    CounterState counters;
    EventQueueState events;
    std::array<FaultState, faultSlots> faults;
    std::array<SharedByte, eepromSize> eeprom;
    std::array<SharedByte, xdataSize> xdata;
    RegisterLogState log;
    DeviceTreeState devices;
    DesktopState desktop;
    SharedLong guiSeenMs; // time of day at which a window was last reported open; 0: never
    SharedLong faultsSeen; // bit n: the fault of slot n was switched on since power-on
    SharedLong statusNoise; // position in the sequence of StatusNoise
    InputHoldState inputHold;
    ReplayState replay;
    std::array<SharedByte, growthSize> growth; // room for later parts of the machine, all zero until then
    BootLoaderState bootLoader;
};

// Programs of different compilers share one file, so the layout is pinned down.
static_assert(sizeof(StateHeader) == 16);
static_assert(sizeof(EcChannelState) == 32);
static_assert(sizeof(InputHoldState) == 8);
static_assert(sizeof(EepromMailboxState) == 16);
static_assert(sizeof(ApplicationMailboxState) == 16);
static_assert(sizeof(AccessoryState) == 24);
static_assert(sizeof(TimingState) == 16);
static_assert(sizeof(CounterState) == 64);
static_assert(sizeof(EventQueueState) == 136);
static_assert(sizeof(FaultState) == 16);
static_assert(sizeof(LogEntryState) == 24);
static_assert(sizeof(DeviceSlotState) == 424);
static_assert(sizeof(DeviceTreeState) == 6792);
static_assert(sizeof(DesktopState) == 80);
static_assert(offsetof(MachineState, channel) == 16);
static_assert(offsetof(MachineState, eepromMailbox) == 48);
static_assert(offsetof(MachineState, applicationMailbox) == 64);
static_assert(offsetof(MachineState, accessory) == 80);
static_assert(offsetof(MachineState, timing) == 104);
static_assert(offsetof(MachineState, counters) == 120);
static_assert(offsetof(MachineState, events) == 184);
static_assert(offsetof(MachineState, faults) == 320);
static_assert(offsetof(MachineState, eeprom) == 1344);
static_assert(offsetof(MachineState, xdata) == 1600);
static_assert(offsetof(MachineState, log) == 67136);
static_assert(offsetof(MachineState, devices) == 165448);
static_assert(offsetof(MachineState, desktop) == 172240);
static_assert(offsetof(MachineState, guiSeenMs) == 172320);
static_assert(offsetof(MachineState, faultsSeen) == 172328);
static_assert(offsetof(MachineState, statusNoise) == 172336);
static_assert(offsetof(MachineState, inputHold) == 172344);
static_assert(offsetof(MachineState, replay) == 172352);
static_assert(offsetof(MachineState, growth) == 177016);
static_assert(offsetof(MachineState, bootLoader) == 196896);
static_assert(sizeof(MachineState) == 348768);

} // namespace tarnSimulator
