#pragma once

#include <QLatin1StringView>
#include <QString>

#include <chrono>

namespace tarnctl {

// Whether the whole answer has the form; an empty form takes anything.
[[nodiscard]] bool matches(QLatin1StringView expected, const QString &text);

// What a person reads of a time, and of a request.
[[nodiscard]] QString secondsText(std::chrono::milliseconds time);
[[nodiscard]] QString requestLine(const QString &command, const QString &data);

} // namespace tarnctl
