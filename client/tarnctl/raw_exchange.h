#pragma once

#include "client/pipe_connection.h"
#include "client/reply_deadline.h"
#include "task.h"

#include <QJsonObject>

namespace tarnctl {

// True when every field of the request comes back in the message, unchanged.
[[nodiscard]] bool echoes(const QJsonObject &message, const QJsonObject &request);

// Sends bytes exactly as given and shows what comes back, as it comes. Ends with the first message that
// echoes the request, or as --count and --for say.
class RawExchange : public Task
{
    Q_OBJECT

public:
    RawExchange(const ToolOptions &options, ToolStreams &streams, QByteArray bytes);

    [[nodiscard]] ExitCode run();

private:
    void handleOpened();
    void handleOpenFailed(const tarn::PipeFailure &failure);
    void handleDocument(const QByteArray &document);
    [[nodiscard]] bool isLast(const QByteArray &document) const;
    void handleExpiry();
    void handleServiceGone();

    tarn::PipeConnection connection;
    tarn::ReplyDeadline deadline;
    QByteArray bytes;
    // Empty when the bytes are no JSON object.
    QJsonObject request;
    int received = 0;
};

} // namespace tarnctl
