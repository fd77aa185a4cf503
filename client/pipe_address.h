#pragma once

#include <QLatin1StringView>
#include <QString>

namespace tarnClient {

// Where a pipe lies, as the system names it, and whether it can lie there.
struct PipeAddress
{
    QString text;
    // In units of the system.
    qsizetype length;
    qsizetype longest;
    QLatin1StringView unit;
    // What the user can do about one that is too long.
    QLatin1StringView shortening;

    [[nodiscard]] bool isTooLong() const { return length > longest; }
};

// Of the pipe with this name; it need not exist.
[[nodiscard]] PipeAddress pipeAddress(const QString &name);

} // namespace tarnClient
