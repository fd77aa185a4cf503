#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace tarn {

// The time limit for an answer. The service sends its messages in order, one every 500 ms, so each
// notification queued before the answer delays it; extend() moves the deadline by as much. A thread that was
// busy when the time was over first gets to read what has come meanwhile.
class ReplyDeadline : public QObject
{
    Q_OBJECT

public:
    explicit ReplyDeadline(QObject *parent = nullptr);

    void start(std::chrono::milliseconds timeout);
    void stop();
    // Another message came before the answer.
    void extend();
    // As given to start(), without extensions.
    [[nodiscard]] std::chrono::milliseconds timeout() const;

signals:
    void expired();

private:
    void handleTimeout();
    void run(std::chrono::milliseconds time);

    QTimer timer;
    QDeadlineTimer due;
    std::chrono::milliseconds limit {0};
};

// "30 s", "0.2 s" or "15 min".
[[nodiscard]] QString durationText(std::chrono::milliseconds duration);

} // namespace tarn
