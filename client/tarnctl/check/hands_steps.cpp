#include "answer_forms.h"
#include "check_step.h"

#include <algorithm>

namespace tarnctl {

namespace {

using L = QLatin1StringView;
using Kind = CheckItem::Kind;
using Part = CheckPart;
using std::chrono::milliseconds;

// After a graphics box has been plugged in, the service waits 3 s and has Windows enable the GPU, which takes
// seconds with some drivers; meanwhile the EC is busy.
constexpr milliseconds whileGpuStarts(20000);

CheckItem await(L accessory, L text)
{
    return {Kind::Await, L("changeAccessoryType"), L(), accessory, text};
}

CheckItem get(L command, L expected, L text, milliseconds lateAfter = milliseconds(0))
{
    return {Kind::Ask, command, L(), expected, text, lateAfter};
}

// The service looks for these while the KVane is attached, so they come some moments after it.
CheckItem repeat(L command, L expected, L text)
{
    return {Kind::Repeat, command, L(), expected, text};
}

CheckItem freeConnector()
{
    return {.kind = Kind::FreeConnector, .text = L("nothing is attached")};
}

bool isAboutTheBox(const CheckStep &step)
{
    return step.part == Part::Hands && step.accessory == graphicsAccessory;
}

bool bringsTheBox(const CheckStep &step)
{
    return std::any_of(step.items.begin(), step.items.end(),
        [](const CheckItem &item) { return item.kind == Kind::Await && item.expected == graphicsAccessory; });
}

} // namespace

void beginWithTheBox(QList<CheckStep> &steps)
{
    const auto firstHands = std::find_if(
        steps.begin(), steps.end(), [](const CheckStep &step) { return step.part == Part::Hands; });
    const auto others = std::stable_partition(firstHands, steps.end(), isAboutTheBox);
    std::stable_partition(others, steps.end(), [](const CheckStep &step) { return !bringsTheBox(step); });
}

QList<CheckStep> handsSteps()
{
    using namespace answerForm;
    return {
        {Part::Hands, L("plug-dock"), L(), L("plugging in the dock"),
            {freeConnector(), await(L("dock"), L("Plug in the dock.")),
                get(L("getAccessoryCode"), L("1"), L("1")), get(L("getMcuVersion"), version, versionText)}},
        {Part::Hands, L("unplug-dock"), L("dock"), L("unplugging the dock"),
            {await(noAccessory, L("Take the dock off."))}},
        {Part::Hands, L("plug-graphics"), L(), L("plugging in the graphics box"),
            {freeConnector(), await(graphicsAccessory, L("Plug in the graphics box.")),
                get(L("getAccessoryCode"), L("2|3"), L("2 or 3"), whileGpuStarts),
                get(L("getMcuVersion"), version, versionText, whileGpuStarts)}},
        {Part::Hands, L("press-gpu-key"), graphicsAccessory, L("the key of the graphics box"),
            {{Kind::Await, L("disengagedGraphics"), L(), L(),
                L("Save your work on screens at the graphics box, press its key, and answer Yes in the "
                  "window.")}}},
        {Part::Hands, L("unplug-graphics"), graphicsAccessory, L("unplugging the graphics box"),
            {{.kind = Kind::ReleasedBox,
                 .text = L("The box has not been released by its key in this check, so leave it attached. It "
                           "may be taken\n  off after the computer has been shut down.")},
                await(noAccessory, L("Wait until the screens at the box are dark, then take it off."))}},
        {Part::Hands, L("plug-kvane"), L(), L("plugging in the KVane"),
            {freeConnector(), await(L("k_vane"), L("Plug in the KVane.")),
                get(L("getAccessoryCode"), L("4"), L("4")), get(L("getMcuVersion"), version, versionText),
                repeat(L("getKvaneBatteryNum"), level, levelText),
                repeat(L("getTarnBatteryNum"), level, levelText)}},
        {Part::Hands, L("unplug-kvane"), L("k_vane"), L("unplugging the KVane"),
            {await(noAccessory, L("Take the KVane off."))}},
    };
}

} // namespace tarnctl
