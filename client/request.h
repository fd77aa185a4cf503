#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tarn {

// The field that is added to a request. The service echoes every field, so the field tells the answer from
// notifications, which use some of the same command names, and from answers to other clients.
inline constexpr QLatin1StringView tagKey("id");

inline constexpr QLatin1StringView commandKey("cmd");
// The value that a command sets, and the value in the answer to a query.
inline constexpr QLatin1StringView dataKey("data");
// How an action ended.
inline constexpr QLatin1StringView resultKey("result");

struct Request
{
    QByteArray bytes;
    QString tag;
};

// Every call gives the request a tag of its own.
[[nodiscard]] Request buildRequest(const QString &command, const std::optional<QString> &data);

} // namespace tarn
