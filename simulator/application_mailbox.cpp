#include "simulator/application_mailbox.h"

#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/colour.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

struct ApplicationMailbox::Command
{
    std::uint8_t code;
    void (ApplicationMailbox::*begin)(); // null: the command has no data
    void (ApplicationMailbox::*finish)(); // null: the command has no answer
};

const ApplicationMailbox::Command ApplicationMailbox::commands[] = {
    {APP_CMD_PEG_STATE, &ApplicationMailbox::storeGpuState, nullptr},
    {APP_EC_RGB_READ, nullptr, &ApplicationMailbox::loadColour},
    {APP_EC_RGB_WRITE, &ApplicationMailbox::applyColour, nullptr},
    {APP_EC_KVANE_SN_READ, nullptr, &ApplicationMailbox::loadSerialNumber},
    {APP_EC_KVANE_LED_READ, nullptr, &ApplicationMailbox::loadKvaneLed},
    {APP_EC_KVANE_LED_WRITE, &ApplicationMailbox::applyKvaneLed, nullptr},
};

const ApplicationMailbox::Command *ApplicationMailbox::find(std::uint8_t code)
{
    const auto found = std::find_if(
        std::begin(commands), std::end(commands), [code](const Command &row) { return row.code == code; });
    return found == std::end(commands) ? nullptr : found;
}

// A code that the EC does not know is taken and cleared like the others, without effect.
void ApplicationMailbox::execute(std::uint8_t command)
{
    ApplicationMailboxState &mailbox = state.applicationMailbox;
    mailbox.pending.store(command);
    if (command == 0) {
        mailbox.busy.store(0);
        return;
    }
    const Command *known = find(command);
    if (known != nullptr && known->begin != nullptr)
        (this->*known->begin)();
    mailbox.sinceMs.store(nowMs());
    mailbox.busy.store(1);
    advance();
}

void ApplicationMailbox::advance()
{
    ApplicationMailboxState &mailbox = state.applicationMailbox;
    if (mailbox.busy.load() == 0)
        return;
    if (!hasElapsed(nowMs(), mailbox.sinceMs.load(), state.timing.mailboxBusyMs.load()))
        return;
    const Command *known = find(mailbox.pending.load());
    if (known != nullptr && known->finish != nullptr)
        (this->*known->finish)();
    mailbox.pending.store(0); // finished once only, also while the fault keeps the command byte
    if (faults.isOn(Fault::MailboxStuck))
        return;
    mailbox.busy.store(0);
    state.xdata[XEC_APP_CMD].store(0);
}

void ApplicationMailbox::storeGpuState()
{
    state.accessory.gpuDriverData.store(state.xdata[XEC_APP_CMD_DATA0].load());
    state.accessory.gpuReports.fetch_add(1);
}

void ApplicationMailbox::loadColour()
{
    const SharedWord *light = lightOfAccessory();
    const Colour colour = Colour::fromWord(light == nullptr ? 0 : light->load());
    state.xdata[XEC_RGB_RED].store(colour.red);
    state.xdata[XEC_RGB_GREEN].store(colour.green);
    state.xdata[XEC_RGB_BLUE].store(colour.blue);
}

void ApplicationMailbox::applyColour()
{
    SharedWord *light = lightOfAccessory();
    if (light == nullptr)
        return;
    const Colour colour {
        state.xdata[XEC_RGB_RED].load(), state.xdata[XEC_RGB_GREEN].load(), state.xdata[XEC_RGB_BLUE].load()};
    light->store(colour.toWord());
}

// Serial number and LED value are zeros without a KVane, as a colour is black without a light.
void ApplicationMailbox::loadSerialNumber()
{
    const bool attached = linkedAccessory(state) == ACCESSORY_KVANE;
    for (std::size_t i = 0; i < serialNumberLength; ++i) {
        const std::uint8_t byte = state.accessory.kvaneSerialNumber[i].load();
        state.xdata[KVANE_SN_BYTES + i].store(attached ? byte : 0);
    }
}

void ApplicationMailbox::loadKvaneLed()
{
    const bool attached = linkedAccessory(state) == ACCESSORY_KVANE;
    state.xdata[XEC_RGB_RED].store(attached ? state.accessory.kvaneLed.load() : 0);
}

void ApplicationMailbox::applyKvaneLed()
{
    if (linkedAccessory(state) == ACCESSORY_KVANE)
        state.accessory.kvaneLed.store(state.xdata[XEC_RGB_RED].load());
}

SharedWord *ApplicationMailbox::lightOfAccessory()
{
    switch (linkedAccessory(state)) {
    case ACCESSORY_DOCK:
        return &state.accessory.dockLight;
    case ACCESSORY_GRAPHICS:
    case ACCESSORY_GRAPHICS_16G:
        return &state.accessory.graphicsLight;
    default:
        return nullptr;
    }
}

} // namespace tarnSimulator
