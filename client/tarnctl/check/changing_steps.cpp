#include "check_step.h"

namespace tarnctl {

namespace {

using L = QLatin1StringView;
using Kind = CheckItem::Kind;
using Part = CheckPart;

constexpr L done("successed");

CheckItem set(L command, L data)
{
    return {.command = command, .data = data, .expected = done, .text = L("successed")};
}

CheckItem get(L command, L expected)
{
    return {.command = command, .expected = expected, .text = expected};
}

// A value that can be read is what tells whether it is back.
CheckItem putBack(L setter, L getter, L expected = done, L afterwards = L())
{
    return {.kind = Kind::PutBack,
        .command = setter,
        .expected = expected,
        .text = L("as it was before"),
        .readBack = getter,
        .afterwards = afterwards};
}

CheckItem remember(L command, L data, L expected, L text)
{
    return {Kind::Remember, command, data, expected, text};
}

CheckItem look(L question)
{
    return {.kind = Kind::Look, .text = question};
}

CheckItem tell(L text)
{
    return {.kind = Kind::Tell, .text = text};
}

QList<CheckItem> dockLight()
{
    return {remember(L("getDockLedStatus"), L(), L("on|off"), L("on or off")),
        set(L("setDockLedStatus"), L("on")), get(L("getDockLedStatus"), L("on")),
        look(L("Is the light of the dock on?")), set(L("setDockLedStatus"), L("off")),
        get(L("getDockLedStatus"), L("off")), look(L("Is the light of the dock off?")),
        putBack(L("setDockLedStatus"), L("getDockLedStatus"))};
}

QList<CheckItem> graphicsLight()
{
    const L colours("white|red|yellow|green|cyan|blue|purplishred|shutdown");
    const L setter("setGraphicsRGB");
    const L getter("getGraphicsRGB");
    QList<CheckItem> items {remember(getter, L(), colours, L("a colour, or shutdown when it is off"))};
    for (const L colour : {L("white"), L("red"), L("yellow"), L("green"), L("cyan"), L("blue"),
             L("purplishred"), L("shutdown")})
        items << set(setter, colour) << get(getter, colour);
    items << look(L("Did the light show white, red, yellow, green, cyan, blue and purple, and then go out?"));
    items << putBack(setter, getter, done,
        L("If the light was off before, the colour that comes with the next \"on\" may be another one now."));
    return items;
}

// The setter's answer does not say whether it worked, so the value is asked for. After the KVane has been
// plugged in, the service answers 0 until it has read the value.
QList<CheckItem> kvaneLight()
{
    const L setter("setKVaneLedLight");
    const L getter("getKVaneLedLight");
    QList<CheckItem> items {{Kind::RememberSettled, getter, L(), L(R"(\d{1,3})"), L("0 to 255")}};
    for (const L light : {L("0"), L("128"), L("255")}) {
        items << CheckItem {.command = setter, .data = light, .text = L("done")};
        items << CheckItem {Kind::Repeat, getter, L(), light, light};
    }
    items << look(L("Did the light of the KVane go out, and then become brighter twice?"));
    items << putBack(setter, getter, L());
    return items;
}

QList<CheckItem> powerMode()
{
    const L profiles("high|balance|low");
    QList<CheckItem> items {remember(L("getTarnPowerMode"), L(), profiles, L("high, balance or low"))};
    for (const L profile : {L("high"), L("balance"), L("low")})
        items << set(L("setTarnPowerMode"), profile) << get(L("getTarnPowerMode"), profile);
    items << putBack(L("setTarnPowerMode"), L("getTarnPowerMode"));
    return items;
}

QList<CheckItem> smartCharging()
{
    QList<CheckItem> items {remember(L("getSmartChargingStatus"), L(), L("ON|OFF"), L("ON or OFF"))};
    for (const L word : {L("OFF"), L("ON")})
        items << set(L("setSmartChargingStatus"), word) << get(L("getSmartChargingStatus"), word);
    items << putBack(L("setSmartChargingStatus"), L("getSmartChargingStatus"), done,
        L("If it was off before, the five days until the service switches it on again begin anew."));
    return items;
}

// The service reads each limit back itself: "successed" means that the computer has taken it.
QList<CheckItem> powerProfiles()
{
    const L control("powerModeControl");
    QList<CheckItem> items {
        tell(L(
            "The service cannot be asked for the power limits in force, so they cannot be put back exactly. "
            "Afterwards\nthe saved profile is the same as before, and power control is given back to the "
            "computer. The application\napplies its profile again when it is started.")),
        remember(control, L("first"), L("[012]"), L("0, 1 or 2: the saved profile has been applied"))};
    for (const L profile : {L("high"), L("balance"), L("low")})
        items << set(control, profile);
    items << CheckItem {.kind = Kind::PutBack,
        .command = control,
        .expected = done,
        .text = L("as it was before"),
        .readBack = control,
        .readBackData = L("first")};
    items << CheckItem {
        Kind::PutBack, control, L("last"), L("sent"), L("no answer: power control is given back")};
    return items;
}

} // namespace

QList<CheckStep> changingSteps()
{
    return {
        {Part::Changing, L("set-dock-light"), L("dock"), L("switching the light of the dock"), dockLight()},
        {Part::Changing, L("set-graphics-light"), L("graphics"), L("the colours of the graphics box"),
            graphicsLight()},
        {Part::Changing, L("set-kvane-light"), L("k_vane"), L("the brightness of the KVane's light"),
            kvaneLight()},
        {Part::Changing, L("set-power-mode"), L(), L("the power mode that the computer keeps"), powerMode()},
        {Part::Changing, L("set-smart-charging"), L(), L("switching smart charging"), smartCharging()},
        {Part::Changing, L("power-profiles"), L(), L("the power profiles"), powerProfiles()},
    };
}

} // namespace tarnctl
