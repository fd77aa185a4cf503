#pragma once

#include "command_check.h"

#include <QByteArray>

namespace tarnClient {

// The field that this tool adds to a request. The service echoes every field, so the field tells the answer
// from notifications, which use some of the same command names, and from answers to other clients.
inline constexpr QLatin1StringView tagKey("tarnctl");

// The value that a command sets, and the value in the answer to a query.
inline constexpr QLatin1StringView dataKey("data");

struct Request
{
    QByteArray bytes;
    QString tag;
};

// Every call gives the request a tag of its own.
[[nodiscard]] Request buildRequest(const TypedCommand &command);

} // namespace tarnClient
