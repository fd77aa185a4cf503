#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

namespace tarnClient {

// How long an answer is waited for. The service sends its messages in order, one each half second, so that
// every notification that was queued before the answer puts it off; each of them moves the deadline by as
// much.
class ReplyDeadline : public QObject
{
    Q_OBJECT

public:
    explicit ReplyDeadline(QObject *parent = nullptr);

    void start(std::chrono::milliseconds timeout);
    void stop();
    // Another message came before the answer.
    void extend();
    [[nodiscard]] bool isRunning() const;
    // As asked for, extensions left out.
    [[nodiscard]] std::chrono::milliseconds timeout() const;

signals:
    void expired();

private:
    QTimer timer;
    std::chrono::milliseconds limit {0};
};

// "30 s", "0.2 s" or "15 min".
[[nodiscard]] QString durationText(std::chrono::milliseconds duration);

} // namespace tarnClient
