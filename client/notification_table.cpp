#include "notification_table.h"

#include "request.h"

#include <algorithm>
#include <iterator>

namespace tarn {

namespace {

using L = QLatin1StringView;

constexpr L names[] = {accessoryNotification, graphicsNotification, smartChargingNotification,
    L("getTarnChargingStatus"), L("getTarnBatteryNum"), L("getKVaneLedLight"), L("getKvaneChargingStatus"),
    L("getKvaneBatteryNum")};

} // namespace

QList<L> notificationNames()
{
    return QList<L>(std::begin(names), std::end(names));
}

std::optional<Notification> notificationIn(const QJsonObject &message)
{
    const QJsonValue name = message.value(commandKey);
    const QJsonValue data = message.value(dataKey);
    const bool isComplete = message.size() == 2 && name.isString() && data.isString();
    if (!isComplete || std::find(std::begin(names), std::end(names), name.toString()) == std::end(names))
        return std::nullopt;
    return Notification {name.toString(), data.toString()};
}

} // namespace tarn
