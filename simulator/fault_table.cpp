#include "simulator/fault_table.h"

#include "simulator/machine_state.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

static_assert(faultCount <= faultSlots);

constexpr FaultTable faults {{
    {Fault::IbfStuck, "ibf-stuck", FaultValue::None, "", 0, 0, 0,
        "IBF stays set: the EC takes no byte, so no register can be read or written"},
    {Fault::ObfStuck, "obf-stuck", FaultValue::None, "", 0, 0, 0,
        "OBF stays set: draining the answer buffer never ends"},
    {Fault::NoAnswer, "no-answer", FaultValue::None, "", 0, 0, 0,
        "OBF never appears after a read command; writes work"},
    {Fault::Slow, "slow", FaultValue::Number, "ms", 0, 60000, 20,
        "time before IBF clears after each byte and before OBF appears"},
    {Fault::MailboxStuck, "mailbox-stuck", FaultValue::None, "", 0, 0, 0,
        "the application command is executed, but its command byte never clears"},
    {Fault::EepromBusy, "eeprom-busy", FaultValue::None, "", 0, 0, 0,
        "an EEPROM operation never ends and has no effect; its status stays 0"},
    {Fault::EepromError, "eeprom-error", FaultValue::Number, "status", 2, 255, 2,
        "an EEPROM operation has no effect and ends with this status"},
    {Fault::ReadbackOffset, "readback-offset", FaultValue::Number, "W", -255, 255, 11,
        "added to the power limits when their read-back is read; 10 is the largest difference accepted"},
    {Fault::FailRegister, "fail-register", FaultValue::Register, "register", 0, 0xFFFF, 0,
        "reads and writes of this one register fail"},
    {Fault::FailRead, "fail-read", FaultValue::Register, "register", 0, 0xFFFF, 0,
        "reads of this one register are never answered"},
    {Fault::FailWrite, "fail-write", FaultValue::Register, "register", 0, 0xFFFF, 0,
        "writes of this one register stop before the value byte is taken"},
    {Fault::FailAfter, "fail-after", FaultValue::Count, "accesses", 0, 1000000, 0,
        "after so many more accesses of any register, one access fails; then the fault is off again"},
    {Fault::FailDeviceList, "fail-device-list", FaultValue::Count, "lists", 0, 1000000, 0,
        "the host's device lists cannot be opened, after so many that still can"},
    {Fault::FailDeviceDescription, "fail-device-description", FaultValue::Device, "device", 0, 0, everyDevice,
        "the description cannot be read"},
    {Fault::FailDeviceHardwareId, "fail-device-hardware-id", FaultValue::Device, "device", 0, 0, everyDevice,
        "the hardware id cannot be read"},
    {Fault::FailDeviceId, "fail-device-id", FaultValue::Device, "device", 0, 0, everyDevice,
        "the instance id cannot be read"},
    {Fault::FailDeviceStatus, "fail-device-status", FaultValue::Device, "device", 0, 0, everyDevice,
        "the status cannot be queried"},
    {Fault::FailDeviceEnable, "fail-device-enable", FaultValue::Device, "device", 0, 0, everyDevice,
        "enabling has no effect and fails"},
    {Fault::FailDeviceDisable, "fail-device-disable", FaultValue::Device, "device", 0, 0, everyDevice,
        "disabling has no effect and fails"},
    {Fault::FailDeviceInstaller, "fail-device-installer", FaultValue::Device, "device", 0, 0, everyDevice,
        "the class installer refuses a change of state"},
    {Fault::NoConsoleSession, "no-console-session", FaultValue::None, "", 0, 0, 0,
        "nobody is logged on at the console, so the service session can ask nobody"},
    {Fault::NoUserToken, "no-user-token", FaultValue::None, "", 0, 0, 0,
        "the service session does not get the user's token"},
    {Fault::NoTokenCopy, "no-token-copy", FaultValue::None, "", 0, 0, 0,
        "the service session cannot duplicate the user's token"},
    {Fault::NoGuiProcess, "no-gui-process", FaultValue::None, "", 0, 0, 0,
        "the service session cannot start the GUI program"},
    {Fault::NoGuiExitCode, "no-gui-exit-code", FaultValue::None, "", 0, 0, 0,
        "the service session cannot read the exit code of the GUI program"},
    {Fault::FlashSilent, "flash-silent", FaultValue::None, "", 0, 0, 0,
        "the MCU's boot loader takes the question for its version and then says nothing more"},
    {Fault::FlashWriteRefused, "flash-write-refused", FaultValue::Number, "blocks", 0, 1024, 8,
        "the boot loader writes so many blocks to flash and refuses the next ones"},
    {Fault::FlashCorrupt, "flash-corrupt", FaultValue::None, "", 0, 0, 0,
        "one byte of the flash is read back wrong by the boot loader"},
    {Fault::FlashUnplugged, "flash-unplugged", FaultValue::Number, "blocks", 0, 1024, 8,
        "the serial line is dead once the boot loader has written so many blocks to flash"},
    {Fault::FlashGoRefused, "flash-go-refused", FaultValue::None, "", 0, 0, 0,
        "the boot loader refuses the address to start the firmware at"},
    {Fault::FlashInitNoise, "flash-init-noise", FaultValue::None, "", 0, 0, 0,
        "the boot loader's first answer after its start is a refusal, then it works"},
}};

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < faults.size(); ++i) {
        if (static_cast<std::size_t>(faults[i].fault) != i)
            return false;
    }
    return true;
}

static_assert(isInOrder());

} // namespace

const FaultTable &faultTable()
{
    return faults;
}

const FaultDescription &describe(Fault fault)
{
    return faults[static_cast<std::size_t>(fault)];
}

const FaultDescription *findFault(std::string_view name)
{
    const auto found = std::find_if(
        faults.begin(), faults.end(), [name](const FaultDescription &row) { return row.name == name; });
    return found == faults.end() ? nullptr : &*found;
}

} // namespace tarnSimulator
