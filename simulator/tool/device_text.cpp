#include "simulator/tool/device_text.h"

#include "simulator/tool/tool_text.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

namespace {

struct TextKey
{
    QLatin1StringView name;
    std::string Device::*text;
    std::size_t size; // with the final zero
};

constexpr TextKey textKeys[] = {
    {QLatin1StringView("name"), &Device::name, deviceNameSize},
    {QLatin1StringView("description"), &Device::description, deviceTextSize},
    {QLatin1StringView("hardwareId"), &Device::hardwareId, deviceTextSize},
    {QLatin1StringView("instanceId"), &Device::instanceId, deviceTextSize},
};

constexpr QLatin1StringView kindKey("kind");
constexpr QLatin1StringView placeKey("place");
constexpr QLatin1StringView startedKey("started");
constexpr QLatin1StringView problemKey("problem");

template <typename Enumeration, std::size_t count>
std::optional<Enumeration> enumeratorOf(const std::string_view (&names)[count], const QJsonValue &name)
{
    const std::string text = name.toString().toStdString();
    const auto found = std::find(std::begin(names), std::end(names), text);
    if (found == std::end(names))
        return std::nullopt;
    return static_cast<Enumeration>(found - std::begin(names));
}

bool isControl(char character)
{
    constexpr unsigned char firstPrintable = 0x20;
    return static_cast<unsigned char>(character) < firstPrintable;
}

// At most so many bytes, and no part of a character. Windows has longer ids than fit.
std::string beginningOf(const std::string &text, std::size_t mostBytes)
{
    if (text.size() <= mostBytes)
        return text;
    std::size_t end = mostBytes;
    constexpr unsigned char continuation =
        0x80; // in the upper two bits of a byte that goes on with a character
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == continuation)
        --end;
    return text.substr(0, end);
}

} // namespace

QJsonObject toJson(const Device &device)
{
    QJsonObject object;
    for (const TextKey &key : textKeys)
        object.insert(key.name, toQString(device.*key.text));
    object.insert(kindKey, toQString(deviceKindNames[static_cast<std::size_t>(device.kind)]));
    object.insert(placeKey, toQString(devicePlaceNames[static_cast<std::size_t>(device.place)]));
    object.insert(startedKey, device.started);
    object.insert(problemKey, static_cast<qint64>(device.problem));
    return object;
}

// A tab would end a field on the way to the port library, and a line feed the step.
std::optional<Device> deviceOf(const QJsonObject &object)
{
    Device device;
    for (const TextKey &key : textKeys) {
        const QJsonValue value = object.value(key.name);
        const std::string text = value.toString().toStdString();
        if (!value.isString() || std::any_of(text.begin(), text.end(), isControl))
            return std::nullopt;
        device.*key.text = beginningOf(text, key.size - 1);
    }
    const QJsonValue placeName = object.value(placeKey);
    const auto kind = enumeratorOf<DeviceKind>(deviceKindNames, object.value(kindKey));
    const auto place = placeName.isUndefined() ? std::optional(DevicePlace::Computer)
                                               : enumeratorOf<DevicePlace>(devicePlaceNames, placeName);
    const QJsonValue problem = object.value(problemKey);
    const bool isGood = kind && place && !device.name.empty() && object.value(startedKey).isBool()
        && problem.toInteger(-1) >= 0 && problem.toInteger() <= 0xFFFF;
    if (!isGood)
        return std::nullopt;
    device.kind = *kind;
    device.place = *place;
    device.started = object.value(startedKey).toBool();
    device.problem = static_cast<std::uint32_t>(problem.toInteger());
    return device;
}

} // namespace tarnSimulator
