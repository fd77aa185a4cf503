#include "panel/client/setting_table.h"

#include <tarn/values.h>

#include <algorithm>

namespace tarnPanel {

namespace {

using L = QLatin1StringView;

const QList<SettingWord> profileWords {
    {L("high"), L("high")}, {L("balance"), L("balance")}, {L("low"), L("low")}};

const QList<SettingEntry> settingRows {
    {
        .name = L("powerProfile"),
        .label = L("Power profile"),
        .hint = L("The power limits in force. Take control first: under automatic control the EC ignores "
                  "them. No query tells which profile is in force; when the EC refuses control, the service "
                  "tells the one of the "
                  "last time."),
        .setter = L("powerModeControl"),
        .words = profileWords,
        .orders = {{L("first"), L("Take control")}, {L("last"), L("Give back")}},
        .whenFailed = L("\"Take control\" comes first."),
    },
    {
        .name = L("powerMode"),
        .label = L("Power mode"),
        .hint = L("The user's choice that the EC remembers. It changes no power limits."),
        .setter = L("setTarnPowerMode"),
        .getter = L("getTarnPowerMode"),
        .words = profileWords,
    },
    {
        .name = L("smartCharging"),
        .label = L("Smart charging"),
        .hint = L("The service switches it on again five days after it was switched off. Reading it as off "
                  "also starts the five days, unless they run already."),
        .setter = L("setSmartChargingStatus"),
        .getter = L("getSmartChargingStatus"),
        .control = ControlKind::Switch,
        .words = {{L("ON"), L("on")}, {L("OFF"), L("off")}},
    },
    {
        .name = L("dockLight"),
        .label = L("Dock light"),
        .hint = L("The light of the dock."),
        .setter = L("setDockLedStatus"),
        .getter = L("getDockLedStatus"),
        .needs = Needs::Dock,
        .control = ControlKind::Switch,
        .words = {{L("on"), L("on")}, {L("off"), L("off")}},
    },
    {
        .name = L("graphicsLight"),
        .label = L("Graphics light"),
        .hint = L("The light of the graphics box. \"off\" is also what the service says when it could not "
                  "read the colour, or the box shows one of its own."),
        .setter = L("setGraphicsRGB"),
        .getter = L("getGraphicsRGB"),
        .needs = Needs::GraphicsBox,
        .words = {{L("white"), L("white")}, {L("red"), L("red")}, {L("yellow"), L("yellow")},
            {L("green"), L("green")}, {L("cyan"), L("cyan")}, {L("blue"), L("blue")},
            {L("purplishred"), L("purplish red")}, {L("shutdown"), L("off")}},
        .orders = {{L("on"), L("Last colour")}},
    },
    {
        .name = L("kvaneLight"),
        .label = L("KVane light"),
        .hint = L("From 0 to 255, as the service last announced it; 0 may also mean that no KVane has been "
                  "there yet."),
        .setter = L("setKVaneLedLight"),
        .getter = L("getKVaneLedLight"),
        .needs = Needs::KVane,
        .control = ControlKind::Level,
        .readBackAfter = std::chrono::milliseconds(1200),
    },
};

constexpr int largestLevel = 255;

} // namespace

const QList<SettingEntry> &settingTable()
{
    return settingRows;
}

bool isValueOf(const SettingEntry &entry, const QString &word)
{
    if (!entry.words.isEmpty())
        return std::ranges::find(entry.words, word, &SettingWord::word) != entry.words.cend();
    bool isNumber = false;
    const int level = word.toInt(&isNumber);
    return isNumber && level >= 0 && level <= largestLevel;
}

QString shownWord(const SettingEntry &entry, const QString &word)
{
    for (const QList<SettingWord> &words : {entry.words, entry.orders}) {
        const auto found = std::ranges::find(words, word, &SettingWord::word);
        if (found != words.cend())
            return found->label.toString().toLower();
    }
    return word;
}

std::optional<QString> valueAfter(const SettingEntry &entry, const QString &word, const QString &answer)
{
    if (isValueOf(entry, word))
        return word;
    bool isNumber = false;
    const int number = answer.toInt(&isNumber);
    const bool isProfile = isNumber && number >= static_cast<int>(tarn::Profile::High)
        && number <= static_cast<int>(tarn::Profile::Low);
    if (!isProfile)
        return std::nullopt;
    return tarn::nameOf(static_cast<tarn::Profile>(number));
}

} // namespace tarnPanel
