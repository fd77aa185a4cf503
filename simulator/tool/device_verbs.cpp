#include "simulator/tool/device_text.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

constexpr std::int64_t largestProblem = 0xFFFF;

template <std::size_t count> QStringList namesIn(const std::string_view (&names)[count])
{
    QStringList texts;
    for (const std::string_view name : names)
        texts << toQString(name);
    return texts;
}

// The enumerators are in the order of their names.
template <typename Enumeration, std::size_t count>
bool parseName(const std::string_view (&names)[count], std::string_view text, Enumeration &value)
{
    const auto found = std::find(std::begin(names), std::end(names), text);
    if (found == std::end(names))
        return false;
    value = static_cast<Enumeration>(found - std::begin(names));
    return true;
}

bool storeText(std::string &target, std::string_view text)
{
    if (text.size() >= deviceTextSize)
        return false;
    target = text;
    return true;
}

bool setKind(Device &device, std::string_view text)
{
    return parseName(deviceKindNames, text, device.kind);
}

bool setPlace(Device &device, std::string_view text)
{
    return parseName(devicePlaceNames, text, device.place);
}

bool setDescription(Device &device, std::string_view text)
{
    return storeText(device.description, text);
}

bool setHardwareId(Device &device, std::string_view text)
{
    return storeText(device.hardwareId, text);
}

bool setInstanceId(Device &device, std::string_view text)
{
    return storeText(device.instanceId, text);
}

bool setStarted(Device &device, std::string_view text)
{
    device.started = text == "on";
    return text == "on" || text == "off";
}

bool setProblem(Device &device, std::string_view text)
{
    const auto number = parseNumber(text);
    if (!number || *number < 0 || *number > largestProblem)
        return false;
    device.problem = static_cast<std::uint32_t>(*number);
    return true;
}

struct Key
{
    std::string_view name;
    std::string_view allowed;
    bool (*set)(Device &device, std::string_view text);
};

constexpr std::string_view someText = "a text of at most 127 characters";

constexpr Key knownKeys[] = {
    {"description", someText, setDescription},
    {"hardware-id", someText, setHardwareId},
    {"instance-id", someText, setInstanceId},
    {"kind", "display, audio or other", setKind},
    {"place", "computer, box or nowhere", setPlace},
    {"started", "on or off", setStarted},
    {"problem", "0 to 65535", setProblem},
};

QStringList deviceNames(const DeviceTree &devices)
{
    QStringList names;
    for (const std::int32_t slot : devices.allSlots())
        names << toQString(devices.device(slot).name);
    return names;
}

std::optional<std::int32_t> chooseDevice(ToolContext &context, const QString &name)
{
    const auto slot = context.computer->devices().find(name.toStdString());
    if (!slot)
        complainAboutName(context, QStringLiteral("device"), name, deviceNames(context.computer->devices()));
    return slot;
}

} // namespace

QString deviceConditionText(const Device &device)
{
    const QString state = device.started ? QStringLiteral("started") : QStringLiteral("stopped");
    return device.problem == 0 ? state : QStringLiteral("%1 (problem %2)").arg(state).arg(device.problem);
}

ExitCode showDevices(ToolContext &context, const QStringList &)
{
    const DeviceTree &devices = context.computer->devices();
    const auto present = devices.presentSlots();
    for (const std::int32_t slot : devices.allSlots()) {
        const Device device = devices.device(slot);
        const bool isPresent = std::find(present.begin(), present.end(), slot) != present.end();
        context.out << toQString(device.name).leftJustified(12)
                    << toQString(deviceKindNames[static_cast<std::size_t>(device.kind)]).leftJustified(9)
                    << (isPresent ? QStringLiteral("present") : QStringLiteral("absent")).leftJustified(9)
                    << deviceConditionText(device).leftJustified(22) << toQString(device.description) << '\n'
                    << QString(12, QLatin1Char(' ')) << "in "
                    << toQString(devicePlaceNames[static_cast<std::size_t>(device.place)]) << ", hardware id "
                    << toQString(device.hardwareId) << '\n';
    }
    return Done;
}

ExitCode changeDevice(ToolContext &context, const QStringList &arguments)
{
    const auto slot = chooseDevice(context, arguments.at(0));
    if (!slot)
        return WrongUsage;
    const std::string name = arguments.at(1).toStdString();
    const auto key = std::find_if(
        std::begin(knownKeys), std::end(knownKeys), [&name](const Key &row) { return row.name == name; });
    if (key == std::end(knownKeys)) {
        QStringList keys;
        for (const Key &row : knownKeys)
            keys << toQString(row.name);
        return complainAboutName(context, QStringLiteral("key"), arguments.at(1), keys);
    }
    Device device = context.computer->devices().device(*slot);
    if (!key->set(device, arguments.at(2).toStdString())) {
        return complain(context, WrongUsage,
            QStringLiteral("%1 cannot be \"%2\"; allowed: %3")
                .arg(arguments.at(1), arguments.at(2), toQString(key->allowed)));
    }
    context.computer->devices().store(*slot, device);
    return Done;
}

ExitCode addDevice(ToolContext &context, const QStringList &arguments)
{
    DeviceTree &devices = context.computer->devices();
    Device device;
    device.name = arguments.at(0).toStdString();
    if (device.name.empty() || device.name.size() >= deviceNameSize) {
        return complain(context, WrongUsage,
            QStringLiteral("a name has 1 to %1 characters, \"%2\" has %3")
                .arg(deviceNameSize - 1)
                .arg(arguments.at(0))
                .arg(device.name.size()));
    }
    if (devices.find(device.name)) {
        return complain(context, WrongUsage,
            QStringLiteral("the name \"%1\" is taken; there are: %2")
                .arg(arguments.at(0), deviceNames(devices).join(QLatin1String(", "))));
    }
    if (!setKind(device, arguments.at(1).toStdString()))
        return complainAboutName(
            context, QStringLiteral("kind of device"), arguments.at(1), namesIn(deviceKindNames));
    if (!setDescription(device, arguments.at(2).toStdString()))
        return complain(context, WrongUsage, QStringLiteral("the description is too long"));
    if (!devices.add(device)) {
        return complain(context, Failed,
            QStringLiteral("there are %1 devices already; remove-device makes room").arg(deviceSlots));
    }
    return Done;
}

ExitCode removeDevice(ToolContext &context, const QStringList &arguments)
{
    const auto slot = chooseDevice(context, arguments.at(0));
    if (!slot)
        return WrongUsage;
    context.computer->devices().remove(*slot);
    return Done;
}

} // namespace tarnSimulator
