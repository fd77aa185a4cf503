#include "simulator/machine_values.h"

#include "device/ec_registers.h"
#include "simulator/value_text.h"

#include <algorithm>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::int64_t longestTimeMs = 60000;
constexpr std::int64_t mostPolls = 1000000;

template <std::uint16_t address> std::string readRegister(const ComputerControl &computer)
{
    return std::to_string(computer.peek(address));
}

template <std::uint16_t address> bool writeRegister(ComputerControl &computer, std::string_view text)
{
    const auto value = parseByte(text);
    if (value)
        computer.poke(address, *value);
    return value.has_value();
}

bool writePowerControl(ComputerControl &computer, std::string_view text)
{
    const auto mode = parseByte(text);
    if (mode)
        computer.setPowerControl(*mode);
    return mode.has_value();
}

// "on" and "off" beside plain numbers, for registers in which one bit is the switch.
template <std::uint16_t address, std::uint8_t onValue>
bool writeSwitch(ComputerControl &computer, std::string_view text)
{
    if (text == "on" || text == "off") {
        computer.poke(address, text == "on" ? onValue : 0);
        return true;
    }
    return writeRegister<address>(computer, text);
}

std::string readSmartCharging(const ComputerControl &computer)
{
    const std::uint8_t value = computer.peekEeprom(EEP_SMART_CHARGING);
    if (value == SMART_CHARGING_ON)
        return "on";
    return value == SMART_CHARGING_OFF ? "off" : std::to_string(value);
}

bool writeSmartCharging(ComputerControl &computer, std::string_view text)
{
    if (text == "on" || text == "off") {
        computer.setSmartCharging(text == "on");
        return true;
    }
    const auto value = parseByte(text);
    if (value)
        computer.pokeEeprom(EEP_SMART_CHARGING, *value);
    return value.has_value();
}

std::string readSerialNumber(const ComputerControl &computer)
{
    return serialNumberText(computer.kvaneSerialNumber());
}

bool writeSerialNumber(ComputerControl &computer, std::string_view text)
{
    const auto bytes = parseSerialNumber(text);
    if (bytes)
        computer.setKvaneSerialNumber(*bytes);
    return bytes.has_value();
}

template <Colour (ComputerControl::*getter)() const> std::string readColour(const ComputerControl &computer)
{
    return colourText((computer.*getter)());
}

template <void (ComputerControl::*setter)(Colour)>
bool writeColour(ComputerControl &computer, std::string_view text)
{
    const auto colour = parseColour(text);
    if (colour)
        (computer.*setter)(*colour);
    return colour.has_value();
}

std::string readKvaneLed(const ComputerControl &computer)
{
    return std::to_string(computer.kvaneLed());
}

bool writeKvaneLed(ComputerControl &computer, std::string_view text)
{
    const auto value = parseByte(text);
    if (value)
        computer.setKvaneLed(*value);
    return value.has_value();
}

std::string readGpuState(const ComputerControl &computer)
{
    return std::to_string(computer.gpuReports().gpuDriverData);
}

std::string readGpuReports(const ComputerControl &computer)
{
    return std::to_string(computer.gpuReports().count);
}

std::string readSession(const ComputerControl &computer)
{
    return computer.desktop().isServiceSession() ? "service" : "user";
}

bool writeSession(ComputerControl &computer, std::string_view text)
{
    if (text != "service" && text != "user")
        return false;
    computer.desktop().setServiceSession(text == "service");
    return true;
}

// The names of the GUI program's exit codes; other codes are plain numbers.
struct NamedAnswer
{
    std::string_view name;
    std::int32_t exitCode;
};
constexpr NamedAnswer answers[] = {{"no", 0}, {"yes", 1}, {"wait", Desktop::waits}};

std::string readAnswer(const ComputerControl &computer)
{
    const std::int32_t answer = computer.desktop().answer();
    for (const NamedAnswer &named : answers) {
        if (named.exitCode == answer)
            return std::string(named.name);
    }
    return std::to_string(answer);
}

bool writeAnswer(ComputerControl &computer, std::string_view text)
{
    for (const NamedAnswer &named : answers) {
        if (named.name == text) {
            computer.desktop().setAnswer(named.exitCode);
            return true;
        }
    }
    const auto exitCode = parseByte(text);
    if (exitCode)
        computer.desktop().setAnswer(*exitCode);
    return exitCode.has_value();
}

std::string readWindow(const ComputerControl &computer)
{
    const std::string last = computer.desktop().lastSwitch();
    return last.empty() ? "none" : last;
}

std::string readWindowsShown(const ComputerControl &computer)
{
    return std::to_string(computer.desktop().windowsShown());
}

std::string readWindowsOpen(const ComputerControl &computer)
{
    return std::to_string(computer.desktop().windowsOpen());
}

std::string readMcuMode(const ComputerControl &computer)
{
    switch (computer.mcuMode()) {
    case McuMode::Firmware:
        return "firmware";
    case McuMode::BootLoader:
        return "boot-loader";
    case McuMode::HeldInReset:
        return "reset";
    case McuMode::NoFirmware:
        break;
    }
    return "nothing";
}

template <SharedWord TimingState::*field> std::string readTiming(const ComputerControl &computer)
{
    return std::to_string((computer.timing().*field).load());
}

template <SharedWord TimingState::*field, std::int64_t maximum>
bool writeTiming(ComputerControl &computer, std::string_view text)
{
    const auto number = parseNumber(text);
    if (!number || *number < 0 || *number > maximum)
        return false;
    (computer.timing().*field).store(static_cast<std::uint32_t>(*number));
    return true;
}

constexpr std::string_view aByte = "0 to 255";
constexpr std::string_view aSwitch = "on, off or 0 to 255";
constexpr std::string_view aColour = "RED,GREEN,BLUE, each 0 to 255";
constexpr std::string_view aTime = "0 to 60000";
constexpr std::string_view readOnly;

constexpr MachineValue values[] = {
    {"battery", aByte, "host battery level", readRegister<EC_TARN_BATTERY_NUM>,
        writeRegister<EC_TARN_BATTERY_NUM>},
    {"charging", aSwitch, "host charging status; bit 0: charging", readRegister<EC_TARN_CHARGING_STATUS>,
        writeSwitch<EC_TARN_CHARGING_STATUS, TARN_CHARGING_BIT>},
    {"kvane-battery", aByte, "KVane battery level", readRegister<EC_KVANE_BATTERY_NUM>,
        writeRegister<EC_KVANE_BATTERY_NUM>},
    {"kvane-charging", aSwitch, "KVane charging status; bit 1: charging",
        readRegister<EC_KVANE_CHARGING_STATUS>, writeSwitch<EC_KVANE_CHARGING_STATUS, KVANE_CHARGING_BIT>},
    {"kvane-serial", "14 hexadecimal digits", "KVane serial number as printed", readSerialNumber,
        writeSerialNumber},
    {"kvane-led", aByte, "KVane LED value", readKvaneLed, writeKvaneLed},
    {"dock-light", aColour, "dock LED; red 1 is on, red 0 off", readColour<&ComputerControl::dockLight>,
        writeColour<&ComputerControl::setDockLight>},
    {"graphics-light", aColour, "light of the graphics box", readColour<&ComputerControl::graphicsLight>,
        writeColour<&ComputerControl::setGraphicsLight>},
    {"link-status", aByte, "link status; 4: linked", readRegister<MCU_LINK_STATUS>,
        writeRegister<MCU_LINK_STATUS>},
    {"accessory-code", aByte, "code of the attached accessory", readRegister<ACCESSORY_CODE>,
        writeRegister<ACCESSORY_CODE>},
    {"hardware-version", aByte, "hardware version of the accessory", readRegister<HARDWARE_VERSION>,
        writeRegister<HARDWARE_VERSION>},
    {"mcu-major", aByte, "MCU version of the accessory, first field", readRegister<MCU_VERSION_MAJOR>,
        writeRegister<MCU_VERSION_MAJOR>},
    {"mcu-minor", aByte, "MCU version of the accessory, second field", readRegister<MCU_VERSION_MINOR>,
        writeRegister<MCU_VERSION_MINOR>},
    {"mcu-patch", aByte, "MCU version of the accessory, third field", readRegister<MCU_VERSION_PATCH>,
        writeRegister<MCU_VERSION_PATCH>},
    {"supply-mode", aByte, "power supply mode; 0 to 3 select the limit sets",
        readRegister<EC_POWER_SUPPLY_MODE>, writeRegister<EC_POWER_SUPPLY_MODE>},
    {"power-mode", aByte, "device power mode: the flag of a power profile", readRegister<EC_TARN_POWER_MODE>,
        writeRegister<EC_TARN_POWER_MODE>},
    {"smart-charging", aSwitch, "smart charging, kept in the EEPROM", readSmartCharging, writeSmartCharging},
    {"pl-control", aByte, "power control; 0 auto, 1 manual, 2 unlimited", readRegister<EC_POWERMODE_PL_CTRL>,
        writePowerControl},
    {"pl1", readOnly, "power limit PL1 in force, W", readRegister<EC_POWERMODE_PL1_CHECK>, nullptr},
    {"pl2", readOnly, "power limit PL2 in force, W", readRegister<EC_POWERMODE_PL2_CHECK>, nullptr},
    {"pl4", readOnly, "power limit PL4 in force, W", readRegister<EC_POWERMODE_PL4_CHECK>, nullptr},
    {"fan-mode", readOnly, "fan mode; 0 quiet, 1 fast", readRegister<EC_FAN_MODE>, nullptr},
    {"gpu-state", readOnly, "GPU state last reported; 1 no driver, 3 not started, 7 active", readGpuState,
        nullptr},
    {"gpu-reports", readOnly, "GPU state reports received", readGpuReports, nullptr},
    {"mcu-update", readOnly, "MCU update control; 0x20 update, 0x08 boot loader, 0x10 reset",
        readRegister<EC_MCU_UPDATE_CTRL>, nullptr},
    {"session", "user or service", "session that the host's service runs in", readSession, writeSession},
    {"gui-answer", "yes, no, wait or an exit code from 0 to 255",
        "what the user does with a window of the GUI program; wait leaves it open", readAnswer, writeAnswer},
    {"gui-window", readOnly, "the switch that the GUI program was last started with", readWindow, nullptr},
    {"gui-shown", readOnly, "windows shown so far", readWindowsShown, nullptr},
    {"gui-open", readOnly, "windows open now", readWindowsOpen, nullptr},
    {"mcu-mode", readOnly, "what runs in the MCU of the KVane: firmware, boot-loader, reset or nothing",
        readMcuMode, nullptr},
    {"eeprom-ms", aTime, "time an EEPROM operation takes, ms", readTiming<&TimingState::eepromBusyMs>,
        writeTiming<&TimingState::eepromBusyMs, longestTimeMs>},
    {"mailbox-ms", aTime, "time until an application command byte clears, ms",
        readTiming<&TimingState::mailboxBusyMs>, writeTiming<&TimingState::mailboxBusyMs, longestTimeMs>},
    {"acceptance-polls", "0 to 1000000", "status reads for which IBF stays set after each byte",
        readTiming<&TimingState::acceptancePolls>, writeTiming<&TimingState::acceptancePolls, mostPolls>},
    {"refused-write-polls", "0 to 1000000", "status reads for which IBF stays set after a refused write",
        readTiming<&TimingState::refusedWritePolls>, writeTiming<&TimingState::refusedWritePolls, mostPolls>},
};

} // namespace

std::span<const MachineValue> machineValues()
{
    return values;
}

const MachineValue *findMachineValue(std::string_view name)
{
    const auto found = std::find_if(
        std::begin(values), std::end(values), [name](const MachineValue &row) { return row.name == name; });
    return found == std::end(values) ? nullptr : found;
}

} // namespace tarnSimulator
