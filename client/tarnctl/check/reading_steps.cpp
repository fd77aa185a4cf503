#include "answer_forms.h"
#include "check_step.h"

namespace tarnctl {

namespace {

using L = QLatin1StringView;
using Part = CheckPart;

constexpr L charging("0|1");
constexpr L chargingText("1 while it charges, else 0");

CheckItem ask(L command, L expected, L text)
{
    return {.command = command, .expected = expected, .text = text};
}

} // namespace

QList<CheckStep> readingSteps()
{
    using namespace answerForm;
    return {
        {Part::Reading, L("accessory"), L(), L("what is attached"),
            {ask(L("getAccessoryType"), L("dock|graphics|k_vane|disconnected"),
                L("the name of what is attached, or disconnected"))}},
        {Part::Reading, L("accessory-code"), anyAccessory, L("the code of the accessory"),
            {ask(L("getAccessoryCode"), L("[1-4]"), L("1 dock, 2 or 3 graphics box, 4 KVane"))}},
        {Part::Reading, L("versions"), anyAccessory, L("the versions of the accessory"),
            {ask(L("getMcuVersion"), version, versionText),
                ask(L("getHardwareVersion"), L(R"(\d{1,3})"), L("a number")),
                ask(L("getMcuUpdateParameters"),
                    L(R"(mcuVer: \d{1,3}\.\d{2,6}, hardwareVer: \d{1,3}, accessoryCode: [1-4])"),
                    L("the same once more, and the code"))}},
        {Part::Reading, L("battery"), L(), L("the computer's battery"),
            {ask(L("getTarnBatteryNum"), level, L("0 to 100 per cent, as Windows shows it"))}},
        {Part::Reading, L("charging"), L(), L("whether the computer charges"),
            {ask(L("getTarnChargingStatus"), charging, chargingText)}},
        {Part::Reading, L("power-mode"), L(), L("the power mode that the computer keeps"),
            {ask(L("getTarnPowerMode"), L("high|balance|low"), L("high, balance or low"))}},
        {Part::Reading, L("smart-charging"), L(), L("smart charging"),
            {ask(L("getSmartChargingStatus"), L("ON|OFF"), L("ON or OFF"))}},
        {Part::Reading, L("dock-light"), L("dock"), L("the light of the dock"),
            {ask(L("getDockLedStatus"), L("on|off"), L("on or off"))}},
        {Part::Reading, L("graphics-light"), L("graphics"), L("the light of the graphics box"),
            {ask(L("getGraphicsRGB"), L("white|red|yellow|green|cyan|blue|purplishred|shutdown"),
                L("a colour, or shutdown when it is off"))}},
        {Part::Reading, L("kvane-serial-number"), L("k_vane"), L("the serial number of the KVane"),
            {ask(L("getTarnKvaneSnCode"), L("[0-9A-F]{14}"), L("14 digits and letters, as on its label"))}},
        {Part::Reading, L("kvane-battery"), L("k_vane"), L("the battery of the KVane"),
            {ask(L("getKvaneBatteryNum"), level, levelText)}},
        {Part::Reading, L("kvane-charging"), L("k_vane"), L("whether the KVane charges"),
            {ask(L("getKvaneChargingStatus"), charging, chargingText)}},
        {Part::Reading, L("kvane-light"), L("k_vane"), L("the light of the KVane"),
            {ask(L("getKVaneLedLight"), L(R"(\d{1,3})"), L("0 to 255"))}},
    };
}

} // namespace tarnctl
