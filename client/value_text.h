#pragma once

#include "tarn/values.h"

#include <QString>

#include <optional>

// What the texts of the service's answers mean. Nothing for those that say that a value is not known.
namespace tarn {

// A battery level in per cent. The service gives the EC's byte as it is: 255 when it could not be read, 251
// before the first reading; nothing above 100 is a level.
[[nodiscard]] std::optional<int> percentIn(const QString &text);
// 1 charging, 0 not (or not readable, which looks the same); 251 before the first reading.
[[nodiscard]] std::optional<bool> chargingIn(const QString &text);
// A byte; -1 when it could not be read.
[[nodiscard]] std::optional<int> byteIn(const QString &text);
// The number of the profile that was applied; negative when none was.
[[nodiscard]] std::optional<Profile> profileNumberedIn(const QString &text);
// "on", "ON", "off", "OFF".
[[nodiscard]] std::optional<bool> switchIn(const QString &text);
// Any text but an empty one.
[[nodiscard]] std::optional<QString> textIn(const QString &text);
// 14 hexadecimal digits; "default" when they could not be read.
[[nodiscard]] std::optional<QString> serialNumberIn(const QString &text);

} // namespace tarn
