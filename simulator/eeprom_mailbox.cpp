#include "simulator/eeprom_mailbox.h"

#include "device/ec_registers.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

enum Operation : std::uint8_t { NoOperation, Reading, Writing, Failing, NeverEnding };

constexpr std::uint8_t noErrorStatus = 0;
constexpr std::uint8_t refusedStatus = 2;

} // namespace

void EepromMailbox::start(std::uint8_t command)
{
    EepromMailboxState &mailbox = state.eepromMailbox;
    const std::uint8_t error = errorOf(command);
    const Operation wanted = command == EEP_CMD_READ ? Reading : Writing;

    mailbox.offset.store(state.xdata[EEP_ADDR_LO].load());
    mailbox.value.store(state.xdata[EEP_DATA].load());
    mailbox.errorStatus.store(error);
    mailbox.sinceMs.store(nowMs());
    state.xdata[EEP_STATUS].store(EEP_STATUS_BUSY);
    if (faults.isOn(Fault::EepromBusy)) {
        mailbox.operation.store(NeverEnding);
        return;
    }
    mailbox.operation.store(error == noErrorStatus ? wanted : Failing);
    advance();
}

void EepromMailbox::advance()
{
    EepromMailboxState &mailbox = state.eepromMailbox;
    const std::uint8_t operation = mailbox.operation.load();
    if (operation == NoOperation || operation == NeverEnding)
        return;
    if (!hasElapsed(nowMs(), mailbox.sinceMs.load(), state.timing.eepromBusyMs.load()))
        return;
    SharedByte &cell = state.eeprom[mailbox.offset.load()];
    if (operation == Reading)
        state.xdata[EEP_DATA].store(cell.load());
    else if (operation == Writing)
        cell.store(mailbox.value.load());
    finish(operation == Failing ? mailbox.errorStatus.load() : EEP_STATUS_DONE);
}

std::uint8_t EepromMailbox::errorOf(std::uint8_t command) const
{
    if (const auto status = faults.value(Fault::EepromError))
        return static_cast<std::uint8_t>(*status);
    const bool commandKnown = command == EEP_CMD_READ || command == EEP_CMD_WRITE;
    const bool offsetExists = state.xdata[EEP_ADDR_HI].load() == 0;
    const bool lengthSupported = state.xdata[EEP_LEN].load() == 1;
    return commandKnown && offsetExists && lengthSupported ? noErrorStatus : refusedStatus;
}

void EepromMailbox::finish(std::uint8_t status)
{
    state.eepromMailbox.operation.store(NoOperation);
    state.xdata[EEP_STATUS].store(status);
}

} // namespace tarnSimulator
