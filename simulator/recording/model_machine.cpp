#include "simulator/recording/model_machine.h"

#include "device/ec_registers.h"
#include "simulator/power_limits.h"
#include "simulator/power_on.h"
#include "simulator/register_table.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::uint16_t versionRegisters[] = {
    HARDWARE_VERSION, MCU_VERSION_MAJOR, MCU_VERSION_MINOR, MCU_VERSION_PATCH};

struct LimitPair
{
    std::uint16_t address;
    std::uint16_t checkAddress;
};
constexpr LimitPair limitPairs[] = {
    {EC_POWERMODE_PL1, EC_POWERMODE_PL1_CHECK},
    {EC_POWERMODE_PL2, EC_POWERMODE_PL2_CHECK},
    {EC_POWERMODE_PL4, EC_POWERMODE_PL4_CHECK},
};

// Nobody unplugs an accessory and plugs it in again, or another one in and out, in less time. The service
// looks several times as often.
constexpr std::uint64_t quickestSwapUs = 2'000'000;

std::unique_ptr<MachineState> machineAtPowerOn()
{
    auto state = std::make_unique<MachineState>();
    initialiseState(*state);
    return state;
}

} // namespace

struct ModelMachine::WriteEffect
{
    std::uint16_t address;
    void (ModelMachine::*after)(std::uint8_t value);
};

const ModelMachine::WriteEffect ModelMachine::writeEffects[] = {
    {EEP_CMD, &ModelMachine::noteEepromCommand},
    {XEC_APP_CMD, &ModelMachine::noteMailboxCommand},
    {EC_POWERMODE_PL_CTRL, &ModelMachine::noteLimits},
    {EC_POWERMODE_PL1, &ModelMachine::noteLimits},
    {EC_POWERMODE_PL2, &ModelMachine::noteLimits},
    {EC_POWERMODE_PL4, &ModelMachine::noteLimits},
    {EC_MCU_UPDATE_CTRL, &ModelMachine::noteMcuControl},
};

// What an application command moves between the data bytes of the mailbox and a memory.
struct ModelMachine::MailboxTransfer
{
    std::uint8_t command;
    void (ModelMachine::*move)(std::optional<Memory> memory, std::size_t size);
    std::optional<Memory> (ModelMachine::*memory)() const;
    std::size_t size;
};

const ModelMachine::MailboxTransfer ModelMachine::transfers[] = {
    {APP_EC_RGB_READ, &ModelMachine::loadAnswer, &ModelMachine::light, MailboxMemories::colourBytes},
    {APP_EC_RGB_WRITE, &ModelMachine::keepWritten, &ModelMachine::light, MailboxMemories::colourBytes},
    {APP_EC_KVANE_SN_READ, &ModelMachine::loadAnswer, &ModelMachine::serialNumber, KVANE_SN_LENGTH},
    {APP_EC_KVANE_LED_READ, &ModelMachine::loadAnswer, &ModelMachine::kvaneLed, 1},
    {APP_EC_KVANE_LED_WRITE, &ModelMachine::keepWritten, &ModelMachine::kvaneLed, 1},
};

ModelMachine::ModelMachine()
    : state(machineAtPowerOn())
    , faults(*state)
    , registers(*state, clock, faults)
    , control(*state)
    , memories(*state)
    , usualEepromBusyMs(state->timing.eepromBusyMs.exchange(0))
    , usualMailboxBusyMs(state->timing.mailboxBusyMs.exchange(0))
{ }

void ModelMachine::write(std::uint16_t address, std::uint8_t value)
{
    registers.write(address, value);
    const Register *row = findRegister(address);
    if (row != nullptr && row->hostWrites == HostWrites::Ignored)
        return;
    origins.erase(address);
    known.insert(address);
    for (const WriteEffect &effect : writeEffects) {
        if (effect.address == address)
            (this->*effect.after)(value);
    }
}

void ModelMachine::adopt(std::uint16_t address, std::uint8_t value)
{
    control.poke(address, value);
    known.insert(address);
    if (const auto origin = origins.find(address); origin != origins.end()) {
        memories.store(origin->second, value);
        memories.makeKnown(origin->second, true);
    }
    const bool isLimit = address == EC_POWERMODE_PL_CTRL
        || std::any_of(std::begin(limitPairs), std::end(limitPairs),
            [address](const LimitPair &pair) { return pair.address == address; });
    if (!isLimit)
        return;
    PowerLimits::apply(*state);
    noteLimits(value);
}

void ModelMachine::forget(std::uint16_t address)
{
    known.erase(address);
    origins.erase(address);
}

void ModelMachine::forgetEepromOperation()
{
    if (origins.contains(EEP_DATA)) // else the host wrote it
        forget(EEP_DATA);
    if (eepromCell)
        memories.makeKnown(*eepromCell, false);
}

std::optional<bool> ModelMachine::seeLinkStatus(std::uint8_t status, Moment seen)
{
    linkStatus = status;
    linkSeenUs = seen.beginUs;
    std::optional<bool> isOther;
    if (status != MCU_LINKED)
        isOther = setAccessory(ACCESSORY_NONE, seen.endUs);
    control.setLinkStatus(status);
    return isOther;
}

std::optional<bool> ModelMachine::seeAccessoryCode(std::uint8_t code, Moment seen)
{
    if (linkStatus != MCU_LINKED)
        return std::nullopt;
    return setAccessory(code, seen.endUs);
}

bool ModelMachine::isLimitOfHost(std::uint16_t checkAddress) const
{
    const auto *const pair = std::find_if(std::begin(limitPairs), std::end(limitPairs),
        [checkAddress](const LimitPair &row) { return row.checkAddress == checkAddress; });
    return pair != std::end(limitPairs) && isKnown(pair->address) && isKnown(EC_POWERMODE_PL_CTRL)
        && control.peek(EC_POWERMODE_PL_CTRL) == PL_CTRL_MANUAL;
}

void ModelMachine::noteMailboxCommand(std::uint8_t command)
{
    hasCommanded = true;
    for (const MailboxTransfer &transfer : transfers) {
        if (transfer.command == command)
            (this->*transfer.move)((this->*transfer.memory)(), transfer.size);
    }
}

void ModelMachine::noteEepromCommand(std::uint8_t command)
{
    const bool isComplete = isKnown(EEP_ADDR_LO) && isKnown(EEP_ADDR_HI) && isKnown(EEP_LEN);
    makeKnown(EEP_STATUS, isComplete);
    eepromCell.reset();
    if (!isComplete) { // the recording begins in the middle
        forget(EEP_DATA);
        memories.forget(Memory::Eeprom);
        return;
    }
    if (control.peek(EEP_STATUS) != EEP_STATUS_DONE)
        return; // the EC refuses it
    const Cell cell {Memory::Eeprom, control.peek(EEP_ADDR_LO)};
    eepromCell = cell;
    if (command == EEP_CMD_WRITE) {
        memories.makeKnown(cell, isKnown(EEP_DATA));
        return;
    }
    makeKnown(EEP_DATA, memories.isKnown(cell));
    origins[EEP_DATA] = cell;
}

// Limits that the EC chooses itself are what it reports.
void ModelMachine::noteLimits(std::uint8_t)
{
    for (const LimitPair &pair : limitPairs)
        makeKnown(pair.checkAddress, isLimitOfHost(pair.checkAddress));
}

void ModelMachine::noteMcuControl(std::uint8_t)
{
    versionFree = true;
}

// Without a memory the answer is zeros, once it is known what is attached.
void ModelMachine::loadAnswer(std::optional<Memory> memory, std::size_t size)
{
    for (std::size_t index = 0; index < size; ++index) {
        const auto address = static_cast<std::uint16_t>(XEC_APP_CMD_DATA0 + index);
        origins.erase(address);
        if (!memory) {
            makeKnown(address, accessory.has_value());
            continue;
        }
        const Cell cell {*memory, index};
        origins[address] = cell;
        makeKnown(address, memories.isKnown(cell));
    }
}

// What was written while it was not known what is attached may have gone anywhere.
void ModelMachine::keepWritten(std::optional<Memory> memory, std::size_t size)
{
    if (!accessory)
        memories.forgetAccessories();
    if (!memory)
        return;
    for (std::size_t index = 0; index < size; ++index) {
        const bool isWritten = isKnown(static_cast<std::uint16_t>(XEC_APP_CMD_DATA0 + index));
        memories.makeKnown({*memory, index}, isWritten);
    }
}

std::optional<MailboxMemories::Memory> ModelMachine::light() const
{
    if (accessory == ACCESSORY_DOCK)
        return Memory::DockLight;
    if (accessory == ACCESSORY_GRAPHICS || accessory == ACCESSORY_GRAPHICS_16G)
        return Memory::GraphicsLight;
    return std::nullopt;
}

std::optional<MailboxMemories::Memory> ModelMachine::kvaneLed() const
{
    return accessory == ACCESSORY_KVANE ? std::optional(Memory::KvaneLed) : std::nullopt;
}

std::optional<MailboxMemories::Memory> ModelMachine::serialNumber() const
{
    return accessory == ACCESSORY_KVANE ? std::optional(Memory::KvaneSerial) : std::nullopt;
}

// The accessory may have been changed at any moment since the host last looked, so what the mailbox moved
// since then may have come from either, or gone to either. Each KVane has a serial number of its own.
bool ModelMachine::setAccessory(std::uint8_t code, std::uint64_t seenUs)
{
    const std::uint64_t unseenUs = seenUs - std::exchange(accessorySeenUs, linkSeenUs);
    const bool mayHaveMixed = std::exchange(hasCommanded, false);
    if (accessory == code && unseenUs < quickestSwapUs)
        return false;
    if (accessory != code)
        plug(code);
    accessory = code;
    if (mayHaveMixed)
        memories.forgetAccessories();
    memories.forget(Memory::KvaneSerial);
    for (const std::uint16_t address : versionRegisters)
        forget(address);
    for (std::uint16_t index = 0; index < KVANE_SN_LENGTH; ++index)
        forget(static_cast<std::uint16_t>(XEC_APP_CMD_DATA0 + index));
    return true;
}

void ModelMachine::plug(std::uint8_t code)
{
    const Accessory *row = findAccessory(code);
    if (code == ACCESSORY_NONE)
        control.detach();
    else
        control.attach(row != nullptr ? *row : unknownAccessory(code));
    versionFree = false;
}

void ModelMachine::makeKnown(std::uint16_t address, bool isKnownNow)
{
    if (isKnownNow)
        known.insert(address);
    else
        known.erase(address);
}

} // namespace tarnSimulator
