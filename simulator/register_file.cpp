#include "simulator/register_file.h"

#include "device/ec_registers.h"
#include "simulator/register_table.h"

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
    return powerLimits.readBack(address, state.xdata[address].load());
}

void RegisterFile::write(std::uint16_t address, std::uint8_t value)
{
    advance();
    const Register *known = findRegister(address);
    if (known != nullptr && known->hostWrites == HostWrites::Ignored)
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
