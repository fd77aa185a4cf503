#include "simulator/machine_values.h"

#include "device/ec_registers.h"
#include "simulator/register_values.h"
#include "simulator/value_text.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr std::int64_t longestTimeMs = 60000;
constexpr std::int64_t mostPolls = 1000000;

constexpr std::string_view aColour = "RED,GREEN,BLUE, each 0 to 255";
constexpr std::string_view aTime = "0 to 60000";
constexpr std::string_view readOnly;

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

// The values that are no plain register.
const MachineValue otherValues[] = {
    {"kvane-led", ValueGroup::Kvane, aByte, "KVane LED value", readKvaneLed, writeKvaneLed},
    {"kvane-serial", ValueGroup::Kvane, "14 hexadecimal digits", "KVane serial number as printed",
        readSerialNumber, writeSerialNumber},
    {"dock-light", ValueGroup::Lights, aColour, "dock LED; red 1 is on, red 0 off",
        readColour<&ComputerControl::dockLight>, writeColour<&ComputerControl::setDockLight>},
    {"graphics-light", ValueGroup::Lights, aColour, "light of the graphics box",
        readColour<&ComputerControl::graphicsLight>, writeColour<&ComputerControl::setGraphicsLight>},
    {"smart-charging", ValueGroup::Power, aSwitch, "smart charging, kept in the EEPROM", readSmartCharging,
        writeSmartCharging},
    {"gpu-state", ValueGroup::Gpu, readOnly, "GPU state last reported; 1 no driver, 3 not started, 7 active",
        readGpuState, nullptr},
    {"gpu-reports", ValueGroup::Gpu, readOnly, "GPU state reports received", readGpuReports, nullptr},
    {"mcu-mode", ValueGroup::McuUpdate, readOnly,
        "what runs in the MCU of the KVane: firmware, boot-loader, reset or nothing", readMcuMode, nullptr},
    {"session", ValueGroup::Desktop, "user or service", "session that the host's service runs in",
        readSession, writeSession},
    {"gui-answer", ValueGroup::Desktop, "yes, no, wait or an exit code from 0 to 255",
        "what the user does with a window of the GUI program; wait leaves it open", readAnswer, writeAnswer},
    {"gui-window", ValueGroup::Desktop, readOnly, "the switch that the GUI program was last started with",
        readWindow, nullptr},
    {"gui-shown", ValueGroup::Desktop, readOnly, "windows shown so far", readWindowsShown, nullptr},
    {"gui-open", ValueGroup::Desktop, readOnly, "windows open now", readWindowsOpen, nullptr},
    {"eeprom-ms", ValueGroup::Timing, aTime, "time an EEPROM operation takes, ms",
        readTiming<&TimingState::eepromBusyMs>, writeTiming<&TimingState::eepromBusyMs, longestTimeMs>},
    {"mailbox-ms", ValueGroup::Timing, aTime, "time until an application command byte clears, ms",
        readTiming<&TimingState::mailboxBusyMs>, writeTiming<&TimingState::mailboxBusyMs, longestTimeMs>},
    {"acceptance-polls", ValueGroup::Timing, "0 to 1000000",
        "status reads for which IBF stays set after each byte", readTiming<&TimingState::acceptancePolls>,
        writeTiming<&TimingState::acceptancePolls, mostPolls>},
    {"refused-write-polls", ValueGroup::Other, "0 to 1000000",
        "status reads for which IBF stays set after a refused write",
        readTiming<&TimingState::refusedWritePolls>, writeTiming<&TimingState::refusedWritePolls, mostPolls>},
};

std::vector<MachineValue> allValues()
{
    std::vector<MachineValue> all = registerValues();
    all.insert(all.end(), std::begin(otherValues), std::end(otherValues));
    std::ranges::stable_sort(all, {}, &MachineValue::group);
    return all;
}

} // namespace

std::span<const MachineValue> machineValues()
{
    static const std::vector<MachineValue> values = allValues();
    return values;
}

const MachineValue *findMachineValue(std::string_view name)
{
    const auto values = machineValues();
    const auto found = std::ranges::find(values, name, &MachineValue::name);
    return found == values.end() ? nullptr : &*found;
}

} // namespace tarnSimulator
