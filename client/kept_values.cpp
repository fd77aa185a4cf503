#include "kept_values.h"

#include "notification_table.h"
#include "value_text.h"

#include <utility>

namespace tarn {

namespace {

using L = QLatin1StringView;

std::optional<int> accessoryNumber(const QString &text)
{
    const std::optional<Accessory> accessory = accessoryNamed(text);
    return accessory ? std::optional(static_cast<int>(*accessory)) : std::nullopt;
}

std::optional<int> chargingNumber(const QString &text)
{
    const std::optional<bool> isCharging = chargingIn(text);
    return isCharging ? std::optional(*isCharging ? 1 : 0) : std::nullopt;
}

template <auto signal> QMetaMethod methodOf()
{
    return QMetaMethod::fromSignal(signal);
}

const std::array<KeptValueRow, keptValueCount> keptRows {{
    {KeptValue::Accessory, L("getAccessoryType"), accessoryNotification, accessoryNumber,
        methodOf<&Client::accessoryChanged>,
        [](Client &client, std::optional<int> value) {
            emit client.accessoryChanged(asAccessory(value));
        }},
    {KeptValue::BatteryLevel, L("getTarnBatteryNum"), L("getTarnBatteryNum"), percentIn,
        methodOf<&Client::batteryLevelChanged>,
        [](Client &client, std::optional<int> value) {
            emit client.batteryLevelChanged(value);
        }},
    {KeptValue::Charging, L("getTarnChargingStatus"), L("getTarnChargingStatus"), chargingNumber,
        methodOf<&Client::chargingChanged>,
        [](Client &client, std::optional<int> value) {
            emit client.chargingChanged(asSwitch(value));
        }},
    {KeptValue::KvaneBatteryLevel, L("getKvaneBatteryNum"), L("getKvaneBatteryNum"), percentIn,
        methodOf<&Client::kvaneBatteryLevelChanged>,
        [](Client &client, std::optional<int> value) {
            emit client.kvaneBatteryLevelChanged(value);
        }},
    {KeptValue::KvaneCharging, L("getKvaneChargingStatus"), L("getKvaneChargingStatus"), chargingNumber,
        methodOf<&Client::kvaneChargingChanged>,
        [](Client &client, std::optional<int> value) {
            emit client.kvaneChargingChanged(asSwitch(value));
        }},
    {KeptValue::KvaneLight, L("getKVaneLedLight"), L("getKVaneLedLight"), byteIn,
        methodOf<&Client::kvaneLightChanged>,
        [](Client &client, std::optional<int> value) {
            emit client.kvaneLightChanged(value);
        }},
}};

} // namespace

std::optional<bool> asSwitch(std::optional<int> number)
{
    return number ? std::optional(*number == 1) : std::nullopt;
}

std::optional<Accessory> asAccessory(std::optional<int> number)
{
    return number ? std::optional(static_cast<Accessory>(*number)) : std::nullopt;
}

const std::array<KeptValueRow, keptValueCount> &keptValueRows()
{
    return keptRows;
}

const KeptValueRow &rowOf(KeptValue value)
{
    return keptRows[static_cast<std::size_t>(value)];
}

std::optional<int> KeptValues::now(KeptValue value) const
{
    return values[static_cast<std::size_t>(value)].value;
}

bool KeptValues::isWanted(KeptValue value) const
{
    return values[static_cast<std::size_t>(value)].isWanted;
}

bool KeptValues::setWanted(KeptValue value, bool isWanted)
{
    Kept &kept = at(value);
    if (std::exchange(kept.isWanted, isWanted) == isWanted || isWanted)
        return false;
    return forget(value);
}

bool KeptValues::forget(KeptValue value)
{
    Kept &kept = at(value);
    kept.reading = Reading::Due;
    return std::exchange(kept.value, std::nullopt).has_value();
}

std::optional<KeptValue> KeptValues::nextToRead() const
{
    for (const KeptValueRow &row : keptRows) {
        const Kept &kept = values[static_cast<std::size_t>(row.value)];
        if (kept.isWanted && kept.reading == Reading::Due)
            return row.value;
    }
    return std::nullopt;
}

void KeptValues::noteRequest(KeptValue value)
{
    at(value).reading = Reading::UnderWay;
}

void KeptValues::readAgain(KeptValue value)
{
    at(value).reading = Reading::Due;
}

bool KeptValues::takeAnswer(KeptValue value, const std::optional<int> &answer)
{
    Kept &kept = at(value);
    if (!kept.isWanted)
        return false;
    kept.reading = kept.reading == Reading::OutOfDate ? Reading::Due : Reading::Done;
    return std::exchange(kept.value, answer) != answer;
}

bool KeptValues::takeNotification(KeptValue value, const std::optional<int> &announced)
{
    Kept &kept = at(value);
    if (kept.reading == Reading::UnderWay)
        kept.reading = Reading::OutOfDate;
    if (!kept.isWanted || kept.reading != Reading::Done)
        return false;
    return std::exchange(kept.value, announced) != announced;
}

KeptValues::Kept &KeptValues::at(KeptValue value)
{
    return values[static_cast<std::size_t>(value)];
}

} // namespace tarn
