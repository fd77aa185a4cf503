#include "simulator/register_file.h"

#include "device/ec_registers.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

struct RegisterFile::ReadEffect
{
    std::uint16_t address;
    void (RegisterFile::*before)(std::uint16_t address);
};

struct RegisterFile::WriteEffect
{
    std::uint16_t address;
    void (RegisterFile::*after)(std::uint16_t address);
};

const RegisterFile::ReadEffect RegisterFile::readEffects[] = {
    {XEC_APP_EVENT, &RegisterFile::presentEvent},
};

const RegisterFile::WriteEffect RegisterFile::writeEffects[] = {
    {EEP_CMD, &RegisterFile::startEeprom},
    {XEC_APP_CMD, &RegisterFile::executeCommand},
    {EC_POWERMODE_PL_CTRL, &RegisterFile::applyLimits},
    {EC_POWERMODE_PL1, &RegisterFile::applyLimits},
    {EC_POWERMODE_PL2, &RegisterFile::applyLimits},
    {EC_POWERMODE_PL4, &RegisterFile::applyLimits},
    {EC_MCU_UPDATE_CTRL, &RegisterFile::controlMcu},
};

namespace {

// What the EC measures or reports; the host's writes are taken and have no effect.
constexpr std::uint16_t readOnly[] = {
    EEP_STATUS,
    MCU_LINK_STATUS,
    MCU_VERSION_MAJOR,
    MCU_VERSION_MINOR,
    MCU_VERSION_PATCH,
    ACCESSORY_CODE,
    HARDWARE_VERSION,
    EC_POWERMODE_PL1_CHECK,
    EC_POWERMODE_PL2_CHECK,
    EC_POWERMODE_PL4_CHECK,
    EC_POWER_SUPPLY_MODE,
    EC_TARN_BATTERY_NUM,
    EC_TARN_CHARGING_STATUS,
    EC_KVANE_BATTERY_NUM,
    EC_KVANE_CHARGING_STATUS,
};

constexpr std::uint16_t limitReadBacks[] = {
    EC_POWERMODE_PL1_CHECK,
    EC_POWERMODE_PL2_CHECK,
    EC_POWERMODE_PL4_CHECK,
};

template <std::size_t size> bool contains(const std::uint16_t (&addresses)[size], std::uint16_t address)
{
    return std::find(std::begin(addresses), std::end(addresses), address) != std::end(addresses);
}

} // namespace

RegisterFile::RegisterFile(MachineState &machine, const NowMs &clock, const FaultPanel &panel)
    : state(machine)
    , eepromMailbox(machine, clock, panel)
    , applicationMailbox(machine, clock, panel)
    , powerLimits(panel)
    , events(machine.events)
    , mcu(machine)
{ }

std::uint8_t RegisterFile::read(std::uint16_t address)
{
    advance();
    for (const ReadEffect &effect : readEffects) {
        if (effect.address == address)
            (this->*effect.before)(address);
    }
    const std::uint8_t value = state.xdata[address].load();
    return contains(limitReadBacks, address) ? powerLimits.readBack(value) : value;
}

void RegisterFile::write(std::uint16_t address, std::uint8_t value)
{
    advance();
    if (contains(readOnly, address))
        return;
    state.xdata[address].store(value);
    for (const WriteEffect &effect : writeEffects) {
        if (effect.address == address)
            (this->*effect.after)(address);
    }
}

void RegisterFile::advance()
{
    eepromMailbox.advance();
    applicationMailbox.advance();
}

// The host clears the event byte in every cycle, also right after reading 0. An event that came between that
// read and that write would be lost, so the EC presents it only when the host reads. An event that has not
// been cleared yet stays.
void RegisterFile::presentEvent(std::uint16_t address)
{
    if (state.xdata[address].load() != APP_EVENT_NONE)
        return;
    if (const auto event = events.take()) {
        state.xdata[XEC_APP_EVENT_DATA].store(event->data);
        state.xdata[address].store(event->code);
    }
}

void RegisterFile::startEeprom(std::uint16_t address)
{
    eepromMailbox.start(state.xdata[address].load());
}

void RegisterFile::executeCommand(std::uint16_t address)
{
    applicationMailbox.execute(state.xdata[address].load());
}

void RegisterFile::applyLimits(std::uint16_t)
{
    PowerLimits::apply(state);
}

void RegisterFile::controlMcu(std::uint16_t)
{
    mcu.applyControlByte();
}

} // namespace tarnSimulator
