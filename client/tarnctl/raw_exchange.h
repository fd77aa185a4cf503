#pragma once

#include "session.h"

#include <QJsonObject>

namespace tarnClient {

// Sends bytes exactly as given and shows what comes back, as it comes. Ends with the first message that
// echoes the request, or as --count and --for say.
class RawExchange : public Session
{
    Q_OBJECT

public:
    RawExchange(const ToolOptions &options, ToolStreams &streams, QByteArray bytes);

    [[nodiscard]] ExitCode run();

private:
    void handleDocument(const QByteArray &document);
    [[nodiscard]] bool isLast(const QByteArray &document) const;
    void handleExpiry();
    void handleServiceGone();

    QByteArray bytes;
    // Empty when the bytes are no JSON object.
    QJsonObject request;
    int received = 0;
};

} // namespace tarnClient
