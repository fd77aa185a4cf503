#include "simulator/application_mailbox.h"

#include "device/ec_registers.h"
#include "simulator/colour.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

struct ApplicationMailbox::Command
{
    std::uint8_t code;
    void (ApplicationMailbox::*action)();
};

const ApplicationMailbox::Command ApplicationMailbox::COMMANDS[] = {
    {APP_CMD_PEG_STATE, &ApplicationMailbox::storeGpuState},
    {APP_EC_RGB_READ, &ApplicationMailbox::loadColour},
    {APP_EC_RGB_WRITE, &ApplicationMailbox::applyColour},
    {APP_EC_KVANE_SN_READ, &ApplicationMailbox::loadSerialNumber},
    {APP_EC_KVANE_LED_READ, &ApplicationMailbox::loadKvaneLed},
    {APP_EC_KVANE_LED_WRITE, &ApplicationMailbox::applyKvaneLed},
};

// A code that the EC does not know is taken and cleared like the others, without effect.
void ApplicationMailbox::execute(std::uint8_t command)
{
    if (command == 0) {
        state.applicationMailbox.busy.store(0);
        return;
    }
    const auto known = std::find_if(std::begin(COMMANDS), std::end(COMMANDS),
        [command](const Command &row) { return row.code == command; });
    if (known != std::end(COMMANDS)) {
        (this->*known->action)();
    }
    state.applicationMailbox.sinceMs.store(nowMs());
    state.applicationMailbox.busy.store(1);
    advance();
}

void ApplicationMailbox::advance()
{
    ApplicationMailboxState &mailbox = state.applicationMailbox;
    if (mailbox.busy.load() == 0 || faults.isOn(Fault::MailboxStuck)) {
        return;
    }
    if (!hasElapsed(nowMs(), mailbox.sinceMs.load(), state.timing.mailboxBusyMs.load())) {
        return;
    }
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
    if (light == nullptr) {
        return;
    }
    const Colour colour {
        state.xdata[XEC_RGB_RED].load(), state.xdata[XEC_RGB_GREEN].load(), state.xdata[XEC_RGB_BLUE].load()};
    light->store(colour.toWord());
}

void ApplicationMailbox::loadSerialNumber()
{
    for (std::size_t i = 0; i < SERIAL_NUMBER_LENGTH; ++i) {
        state.xdata[KVANE_SN_BYTES + i].store(state.accessory.kvaneSerialNumber[i].load());
    }
}

void ApplicationMailbox::loadKvaneLed()
{
    state.xdata[XEC_RGB_RED].store(state.accessory.kvaneLed.load());
}

void ApplicationMailbox::applyKvaneLed()
{
    state.accessory.kvaneLed.store(state.xdata[XEC_RGB_RED].load());
}

SharedWord *ApplicationMailbox::lightOfAccessory()
{
    if (state.xdata[MCU_LINK_STATUS].load() != MCU_LINKED) {
        return nullptr;
    }
    switch (state.xdata[ACCESSORY_CODE].load()) {
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
