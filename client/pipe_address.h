#pragma once

#include <QLatin1StringView>
#include <QString>

namespace tarn {

// The full name of a pipe on this system, and whether it is too long.
struct PipeAddress
{
    QString text;
    // Of `text`, in `unit`: bytes or characters, depending on the system.
    qsizetype length;
    qsizetype longest;
    QLatin1StringView unit;
    // What the user can do when it is too long.
    QLatin1StringView shortening;

    [[nodiscard]] bool isTooLong() const { return length > longest; }
};

// For the pipe with this name, which need not exist.
[[nodiscard]] PipeAddress pipeAddress(const QString &name);

} // namespace tarn
