#pragma once

#include "tarn/client.h"

#include <QJsonObject>

#include <optional>

namespace tarn {

// The notification that a message is, if it is one: exactly a name of those that the service sends without a
// request, and a text. The answer to a program that marks its requests with nothing looks the same.
[[nodiscard]] std::optional<Notification> notificationIn(const QJsonObject &message);

[[nodiscard]] QList<QLatin1StringView> notificationNames();

inline constexpr QLatin1StringView accessoryNotification("changeAccessoryType");
inline constexpr QLatin1StringView graphicsNotification("disengagedGraphics");
inline constexpr QLatin1StringView smartChargingNotification("getSmartChargingStatus");

} // namespace tarn
