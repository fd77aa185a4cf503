#pragma once

#include "session.h"
#include "stdin_reader.h"

#include <memory>

namespace tarnClient {

// Shows notifications as they come and sends the commands that are typed meanwhile, one at a time. The
// service serves one client, so notifications and commands share a connection.
class Watch : public Session
{
    Q_OBJECT

public:
    Watch(const ToolOptions &options, ToolStreams &streams);

    [[nodiscard]] ExitCode run();

private:
    void announceStart();
    void tryConnect();
    void retryLater(std::chrono::milliseconds pause);
    void handleServiceGone();

    void handleDocument(const QByteArray &bytes);
    void showNotification(const Message &message);
    void showAnswer(const Message &message);
    void show(QLatin1StringView kind, const QString &text, const QByteArray &json);

    void handleNextLines();
    [[nodiscard]] std::optional<QString> takeUrgentLine();
    void handleLine(const QString &line);
    void showHelp(const TypedCommand &command);
    void sendCommand(const TypedCommand &command);
    void connectAnew();
    void handleExpiry();
    void handleDurationEnd();
    void endWatching();

    std::unique_ptr<StdinReader> reader;
    // The command that waits for its answer; an empty tag: none.
    TypedCommand pending;
    QString pendingTag;
    // A request that gets no answer has just been sent; the next must wait for `unansweredPause`.
    bool pausing = false;
    int notifications = 0;
};

} // namespace tarnClient
