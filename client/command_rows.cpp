#include "command_catalogue.h"

#include "value_words.h"

#include <utility>

namespace tarn {

namespace {

using L = QLatin1StringView;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

// The service answers these from memory; the long limit is for a service that has just started.
constexpr milliseconds cachedTimeout = seconds(10);
// A healthy EC takes well under a second. One access to a stuck EC takes about 5 s before the service gives
// up, and a command makes several of them, after waiting for those of the accessory monitor.
constexpr milliseconds ecTimeout = seconds(30);
// Switching the MCU takes up to 5 s of fixed pauses, and longer while others use the EC.
constexpr milliseconds modeTimeout = seconds(45);
// The operating system disables the display adapter; how long it takes is not known.
constexpr milliseconds deviceTimeout = seconds(60);
// About 9 s of switching and up to three runs of a flasher over a serial line.
constexpr milliseconds firmwareTimeout = minutes(15);

DataRule choice(QList<QLatin1StringView> words)
{
    return DataRule {DataKind::Choice, std::move(words)};
}

const QList<CommandEntry> rows {
    {
        .name = L("getAccessoryType"),
        .summary = L("Tells which accessory is attached to the expansion connector"),
        .concerns = L("any accessory"),
        .answerKeys = {L("data")},
        .answerMeaning = L("dock, graphics, k_vane or disconnected; empty for an accessory that the "
                           "service does not know"),
        .timeout = cachedTimeout,
        .needsEc = false,
        .example = L("tarnctl getAccessoryType"),
    },
    {
        .name = L("getMcuVersion"),
        .summary = L("Tells the firmware version of the accessory's MCU"),
        .concerns = L("any accessory"),
        .answerKeys = {L("data")},
        .answerMeaning = L("the version, such as 1.23 for 1, 2 and 3; empty when the EC cannot be read"),
        .timeout = ecTimeout,
        .example = L("tarnctl getMcuVersion"),
    },
    {
        .name = L("getHardwareVersion"),
        .summary = L("Tells the hardware version of the accessory"),
        .concerns = L("any accessory"),
        .answerKeys = {L("data")},
        .answerMeaning = L("the version in decimal; empty when the EC cannot be read"),
        .timeout = ecTimeout,
        .example = L("tarnctl getHardwareVersion"),
    },
    {
        .name = L("getAccessoryCode"),
        .summary = L("Tells the code by which the EC names the accessory"),
        .concerns = L("any accessory"),
        .answerKeys = {L("data")},
        .answerMeaning = L("1 dock, 2 and 3 graphics box, 4 KVane; empty when the EC cannot be read"),
        .timeout = ecTimeout,
        .example = L("tarnctl getAccessoryCode"),
    },
    {
        .name = L("getMcuUpdateParameters"),
        .summary = L("Tells what is needed to choose an MCU firmware"),
        .concerns = L("any accessory"),
        .answerKeys = {L("mcuVer"), L("hardwareVer"), L("accessoryCode")},
        .answerMeaning = L("MCU version, hardware version and accessory code, one per line"),
        .timeout = ecTimeout,
        .example = L("tarnctl getMcuUpdateParameters"),
    },
    {
        .name = L("powerModeControl"),
        .summary = L("Applies a power profile (package power limits and fan mode)"),
        .concerns = L("this computer"),
        .data = choice(QList<L> {L("first"), L("last")} + profileNames()),
        .answerKeys = {L("result")},
        .answerMeaning =
            L("successed or failed; for \"first\" the number of the saved profile that was applied: 0 "
              "high, 1 balance, 2 low, negative when none was; when the EC refuses manual control, that of "
              "the last \"first\""),
        .outcomeKey = L("result"),
        .unansweredData = L("last"),
        .timeout = ecTimeout,
        .example = L("tarnctl powerModeControl balance"),
        .note = L("\"first\" tells the service that the client application has started: the saved "
                  "profile is restored. \"last\" tells it that the application closes; the service sends "
                  "no answer to it, so tarnctl prints \"sent\"."),
    },
    {
        .name = L("getDockLedStatus"),
        .summary = L("Tells whether the dock's LED is on"),
        .concerns = L("dock"),
        .answerKeys = {L("data")},
        .answerMeaning = L("on, off or unknown"),
        .timeout = ecTimeout,
        .example = L("tarnctl getDockLedStatus"),
    },
    {
        .name = L("setDockLedStatus"),
        .summary = L("Switches the dock's LED"),
        .concerns = L("dock"),
        .data = choice({L("on"), L("off")}),
        .answerKeys = {L("result")},
        .answerMeaning = L("successed or failed"),
        .outcomeKey = L("result"),
        .timeout = ecTimeout,
        .example = L("tarnctl setDockLedStatus on"),
    },
    {
        .name = L("getGraphicsRGB"),
        .summary = L("Tells the colour of the graphics box's light"),
        .concerns = L("graphics box"),
        .answerKeys = {L("data")},
        .answerMeaning = L("a colour name; shutdown when the light is off or the colour could not be read"),
        .timeout = ecTimeout,
        .example = L("tarnctl getGraphicsRGB"),
    },
    {
        .name = L("setGraphicsRGB"),
        .summary = L("Sets the colour of the graphics box's light"),
        .concerns = L("graphics box"),
        .data = choice(QList<L> {L("on")} + colourNames()),
        .answerKeys = {L("result")},
        .answerMeaning = L("successed or failed"),
        .outcomeKey = L("result"),
        .timeout = ecTimeout,
        .example = L("tarnctl setGraphicsRGB cyan"),
        .note = L("\"shutdown\" switches the light off, \"on\" brings the last colour back (with --json "
                  "the answer names it)."),
    },
    {
        .name = L("requestMcuUpdate"),
        .summary = L("Flashes an MCU firmware"),
        .concerns = L("KVane"),
        .data = DataRule {DataKind::McuFileName},
        .answerKeys = {L("data"), L("mcuVer")},
        .answerMeaning = L("successed and the MCU version, or failed"),
        .outcomeKey = L("data"),
        .timeout = firmwareTimeout,
        .example = L("tarnctl requestMcuUpdate kvane-1.24.bin"),
        .note = L("Takes up to some minutes, and nothing else reaches the EC meanwhile. Keep the "
                  "computer on. The file is moved out of the download folder."),
    },
    {
        .name = L("requestEnterMcuUpdateMode"),
        .summary = L("Puts the MCU into its boot loader"),
        .concerns = L("KVane"),
        .answerKeys = {L("data")},
        .answerMeaning = L("successed or failed"),
        .outcomeKey = L("data"),
        .timeout = modeTimeout,
        .example = L("tarnctl requestEnterMcuUpdateMode"),
        .note = L("The EC stays reserved until requestLeaveMcuUpdateMode: other commands that need the "
                  "EC wait."),
    },
    {
        .name = L("requestLeaveMcuUpdateMode"),
        .summary = L("Starts the MCU's firmware again after requestEnterMcuUpdateMode"),
        .concerns = L("KVane"),
        .answerKeys = {L("data")},
        .answerMeaning = L("the MCU version after leaving"),
        .timeout = modeTimeout,
        .example = L("tarnctl requestLeaveMcuUpdateMode"),
    },
    {
        .name = L("requestStartEcUpdate"),
        .summary = L("Stops the service's own EC traffic before an EC update"),
        .concerns = L("this computer"),
        .answerKeys = {L("data")},
        .answerMeaning = L("successed or failed"),
        .outcomeKey = L("data"),
        .timeout = ecTimeout,
        .example = L("tarnctl requestStartEcUpdate"),
        .note = L("The EC stays reserved until the service is restarted: other commands that need the EC "
                  "wait until then."),
    },
    {
        .name = L("requestEcUpdate"),
        .summary = L("Flashes an EC firmware with the external EC tool"),
        .concerns = L("this computer"),
        .data = DataRule {DataKind::EcFileName},
        .answerKeys = {L("data")},
        .answerMeaning =
            L("successed or failed; successed says that the tool has been run, not that it succeeded"),
        .outcomeKey = L("data"),
        .timeout = firmwareTimeout,
        .example = L("tarnctl requestEcUpdate ec-0105.bin"),
        .note = L("Takes up to some minutes. Keep the computer on. EC traffic resumes only after a "
                  "restart of the service."),
    },
    {
        .name = L("setSmartChargingStatus"),
        .summary = L("Switches smart charging"),
        .concerns = L("this computer"),
        .data = choice({L("ON"), L("OFF")}),
        .answerKeys = {L("result")},
        .answerMeaning = L("successed or failed"),
        .outcomeKey = L("result"),
        .timeout = ecTimeout,
        .example = L("tarnctl setSmartChargingStatus OFF"),
        .note = L("The service switches smart charging on again five days after it was switched off."),
    },
    {
        .name = L("getSmartChargingStatus"),
        .summary = L("Tells whether smart charging is on"),
        .concerns = L("this computer"),
        .answerKeys = {L("data")},
        .answerMeaning = L("ON, OFF, or failed when the EC cannot be read"),
        .outcomeKey = L("data"),
        .timeout = ecTimeout,
        .example = L("tarnctl getSmartChargingStatus"),
        .note = L("Finding it OFF starts the five days after which the service switches it on again, "
                  "unless they run already."),
    },
    {
        .name = L("getTarnPowerMode"),
        .summary = L("Tells the power mode that is selected in the EC"),
        .concerns = L("this computer"),
        .answerKeys = {L("data")},
        .answerMeaning = L("high, balance or low; hide for any other mode or when the EC cannot be read"),
        .timeout = ecTimeout,
        .example = L("tarnctl getTarnPowerMode"),
    },
    {
        .name = L("setTarnPowerMode"),
        .summary = L("Selects the power mode in the EC"),
        .concerns = L("this computer"),
        .data = choice(profileNames()),
        .answerKeys = {L("result")},
        .answerMeaning = L("successed or failed"),
        .outcomeKey = L("result"),
        .timeout = ecTimeout,
        .example = L("tarnctl setTarnPowerMode low"),
        .note = L("This is the EC's own mode flag. It applies no power limits: powerModeControl does."),
    },
    {
        .name = L("requestBeginGraphicsMcuUpdate"),
        .summary = L("Disables the external GPU before its MCU is updated"),
        .concerns = L("graphics box"),
        .answerMeaning = L("none: the service does not say whether it worked, so tarnctl prints \"done\""),
        .timeout = deviceTimeout,
        .needsEc = false,
        .example = L("tarnctl requestBeginGraphicsMcuUpdate"),
    },
    {
        .name = L("getTarnKvaneSnCode"),
        .summary = L("Tells the serial number of the KVane"),
        .concerns = L("KVane"),
        .answerKeys = {L("data")},
        .answerMeaning = L("14 hexadecimal digits; default when it cannot be read"),
        .timeout = ecTimeout,
        .example = L("tarnctl getTarnKvaneSnCode"),
    },
    {
        .name = L("setKVaneLedLight"),
        .summary = L("Sets the KVane's LED"),
        .concerns = L("KVane"),
        .data = DataRule {DataKind::Byte},
        .answerMeaning = L("none: the service does not say whether it worked, so tarnctl prints \"done\""),
        .timeout = ecTimeout,
        .example = L("tarnctl setKVaneLedLight 128"),
    },
    {
        .name = L("getKVaneLedLight"),
        .summary = L("Tells the KVane's LED value"),
        .concerns = L("KVane"),
        .answerKeys = {L("data")},
        .answerMeaning = L("a number; -1 when it cannot be read"),
        .timeout = cachedTimeout,
        .needsEc = false,
        .example = L("tarnctl getKVaneLedLight"),
    },
    {
        .name = L("getKvaneChargingStatus"),
        .summary = L("Tells whether the KVane is charging"),
        .concerns = L("KVane"),
        .answerKeys = {L("data")},
        .answerMeaning = L("1 charging, 0 not; 251 before the first reading"),
        .timeout = cachedTimeout,
        .needsEc = false,
        .example = L("tarnctl getKvaneChargingStatus"),
    },
    {
        .name = L("getKvaneBatteryNum"),
        .summary = L("Tells the KVane's battery value"),
        .concerns = L("KVane"),
        .answerKeys = {L("data")},
        .answerMeaning =
            L("a number as the EC gives it; 255 when it cannot be read, 251 before the first reading"),
        .timeout = cachedTimeout,
        .needsEc = false,
        .example = L("tarnctl getKvaneBatteryNum"),
    },
    {
        .name = L("getTarnChargingStatus"),
        .summary = L("Tells whether the computer is charging"),
        .concerns = L("this computer"),
        .answerKeys = {L("data")},
        .answerMeaning = L("1 charging, 0 not; 251 before the first reading"),
        .timeout = cachedTimeout,
        .needsEc = false,
        .example = L("tarnctl getTarnChargingStatus"),
    },
    {
        .name = L("getTarnBatteryNum"),
        .summary = L("Tells the computer's battery value"),
        .concerns = L("this computer"),
        .answerKeys = {L("data")},
        .answerMeaning =
            L("a number as the EC gives it; 255 when it cannot be read, 251 before the first reading"),
        .timeout = cachedTimeout,
        .needsEc = false,
        .example = L("tarnctl getTarnBatteryNum"),
    },
};

} // namespace

const QList<CommandEntry> &commandCatalogue()
{
    return rows;
}

} // namespace tarn
