#pragma once

#include <QLocalSocket>
#include <QString>

#include <optional>

namespace tarn {

// Why a pipe could not be opened.
struct PipeFailure
{
    enum class Kind {
        NoService,
        AccessDenied,
        NameTooLong,
        // Another client is connecting at this moment.
        Busy,
        Other,
    };

    Kind kind = Kind::Other;
    // The system's words.
    QString text {};
};

// Begins to connect the socket, and never waits. Afterwards the socket is connected, or is connecting and
// will say by its signals how that ended; or a failure is returned.
[[nodiscard]] std::optional<PipeFailure> beginOpening(QLocalSocket &socket, const QString &name);

} // namespace tarn
