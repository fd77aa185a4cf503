#pragma once

#include "client_task.h"
#include "silence_report.h"
#include "stdin_reader.h"

#include <QFutureWatcher>
#include <QTimer>

#include <memory>

namespace tarnctl {

// Shows notifications as they come and sends the commands that are typed meanwhile, one at a time. The
// service serves one client, so notifications and commands share a connection.
class Watch : public ClientTask
{
    Q_OBJECT

public:
    Watch(const ToolOptions &options, ToolStreams &streams,
        const tarn::ClientTimes &times = tarn::ClientTimes());

    [[nodiscard]] ExitCode run();

private:
    void handleState(tarn::Client::State state);
    void handleServiceGone();
    void handleConnectingFailed(tarn::Client::Problem problem);

    void showNotification(const tarn::Notification &notification);
    void showLateAnswer(const QJsonObject &answer);
    void handleReply(const tarn::Reply &reply);
    [[nodiscard]] bool mustSendAgain(const tarn::Reply &reply) const;
    void show(QLatin1StringView kind, const QString &text, const QByteArray &json);

    void beginReading();
    void handleNextLines();
    [[nodiscard]] std::optional<QString> takeUrgentLine();
    [[nodiscard]] bool mayReconnect() const;
    [[nodiscard]] bool isWritten() const;
    void handleLine(const QString &line);
    void sendCommand(const TypedCommand &command);
    void sendPending();
    void connectAnew();
    void handleDurationEnd();
    void endWatching();

    SilenceReport silence;
    // Null until the first attempt to connect has ended.
    std::unique_ptr<StdinReader> reader;
    // The command that waits for its answer.
    std::optional<TypedCommand> pending;
    QFutureWatcher<tarn::Reply> sending;
    // Since it was typed.
    QTimer writingTimer;
    // It has found no connection and is sent on the next one.
    bool isHeld = false;
    bool isGreeted = false;
    int notifications = 0;
};

} // namespace tarnctl
