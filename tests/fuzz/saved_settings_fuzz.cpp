// What the service finds in its own files at a start. Input: 'p' and the profile file, or 'c' and the colour
// file.
#include "accessory/ec_power_mode_manager.h"
#include "accessory/graphics_colours.h"
#include "accessory/power_profiles.h"
#include "fuzzed_machine.h"
#include "graphics/graphics_accessory_manager.h"
#include "harness.h"

using namespace tarnAccessoryManager;
using tarnFuzz::FuzzedMachine;
using tarnFuzz::require;

namespace {

void tryProfileFile(const QByteArray &content)
{
    const FuzzedMachine &machine = FuzzedMachine::instance();
    machine.folder.write("powermodeconfig.xml", content);
    auto *manager = EcPowerModeManager::instance();
    require(manager->restorePowerModeAtStart() == 0, "whatever the file holds, a profile is restored");
    const int profile = manager->currentPowerMode();
    require(profileOfNumber(profile) != nullptr, "the profile is one of the table");
    const auto isOtherNumberIn = [&content](const PowerProfile &row) {
        return row.number != defaultProfile && content.contains(QByteArray::number(row.number));
    };
    const PowerProfile *saved = findProfile(
        [&content](const PowerProfile &row) { return content.trimmed() == QByteArray::number(row.number); });
    if (saved)
        require(profile == saved->number, "a plain number is restored");
    else if (!findProfile(isOtherNumberIn))
        require(profile == defaultProfile, "without a number it is the usual profile");
    require(
        machine.folder.read("powermodeconfig.xml") == QByteArray::number(profile), "the file is made good");
}

void tryColourFile(const QByteArray &content)
{
    const FuzzedMachine &machine = FuzzedMachine::instance();
    machine.folder.write("graphicsRGB_config.ini", content);
    auto *graphics = GraphicsAccessoryManager::instance();
    const int colour = graphics->readGraphicsColor();
    require(isGraphicsColour(colour) && colour != graphicsOff, "the colour is one that can be shown");
    graphics->saveGraphicsColor(5);
    require(graphics->readGraphicsColor() == 5, "a colour can be saved whatever was there");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0 || (data[0] != 'p' && data[0] != 'c'))
        return -1;
    FuzzedMachine::instance().startAfresh();
    const QByteArray content = tarnFuzz::bytesOf(data + 1, size - 1);
    if (data[0] == 'p')
        tryProfileFile(content);
    else
        tryColourFile(content);
    return 0;
}
