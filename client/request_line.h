#pragma once

#include "client_times.h"
#include "kept_values.h"
#include "queued_request.h"
#include "reply_deadline.h"
#include "reply_maker.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace tarn {

class PipeConnection;

// A request that has been written and is not answered yet.
struct WrittenRequest
{
    // Null for a question of the client's own.
    std::unique_ptr<QueuedRequest> request {};
    // The value that the question is for; nothing: it looks for silence.
    std::optional<KeptValue> value {};
    QString command {};
    QString tag {};
    std::chrono::milliseconds limit {0};
    bool isNeverAnswered = false;
    // From its writing until it was taken off the line.
    std::chrono::milliseconds waited {0};

    [[nodiscard]] ReplyMaker reply() const { return std::move(ReplyMaker(command).sent(waited)); }
};

// Where one request at a time is on its way, with the time limit for its answer, and the pause after one that
// gets none.
class RequestLine : public QObject
{
    Q_OBJECT

public:
    RequestLine(PipeConnection &pipe, const ClientTimes &clientTimes, QObject *parent);

    // Nothing is on its way, and no pause is made.
    [[nodiscard]] bool isFree() const;
    [[nodiscard]] bool isWaiting() const { return written.has_value(); }
    // Writes to a free line. A request that cannot be sent, or has been cancelled, is given back with its
    // end.
    [[nodiscard]] std::optional<Reply> write(WrittenRequest &next, const QString &data);
    [[nodiscard]] bool isAnswer(const QJsonObject &message) const;
    // Another message came before the answer.
    void extend();
    // What is on its way, if anything is, with which the line is done.
    [[nodiscard]] std::optional<WrittenRequest> take();
    // Keeps the line for the rest of the pause after a request without an answer.
    void pauseAfter(const WrittenRequest &unanswered);
    void stopPause();

signals:
    // A request has been given to the connection. What is on its way is up to date then.
    void hasWritten(const QByteArray &request);
    // The time for the answer is over; the request is to be taken.
    void expired();
    // The pause after a request that is never answered is over; the request is to be taken.
    void isSent();
    // The pause after another is over.
    void freed();

private:
    void handleDrained();
    void handlePauseEnd();

    PipeConnection &connection;
    const ClientTimes times;
    std::optional<WrittenRequest> written;
    ReplyDeadline deadline;
    QElapsedTimer sinceWritten;
    QTimer pauseTimer;
};

} // namespace tarn
