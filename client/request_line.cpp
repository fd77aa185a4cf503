#include "request_line.h"

#include "pipe_connection.h"
#include "request.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

using std::chrono::milliseconds;

// The service takes a request of this size in one piece on every system.
constexpr qsizetype largestRequest = 4095; // bytes

} // namespace

RequestLine::RequestLine(PipeConnection &pipe, const ClientTimes &clientTimes, QObject *parent)
    : QObject(parent)
    , connection(pipe)
    , times(clientTimes)
    , deadline(this)
    , pauseTimer(this)
{
    pauseTimer.setSingleShot(true);
    connect(&connection, &PipeConnection::drained, this, &RequestLine::handleDrained);
    connect(&deadline, &ReplyDeadline::expired, this, &RequestLine::expired);
    connect(&pauseTimer, &QTimer::timeout, this, &RequestLine::handlePauseEnd);
}

bool RequestLine::isFree() const
{
    return !written && !pauseTimer.isActive();
}

std::optional<Reply> RequestLine::write(WrittenRequest &next, const QString &data)
{
    const Request request =
        buildRequest(next.command, data.isNull() ? std::nullopt : std::optional<QString>(data));
    if (request.bytes.size() > largestRequest) {
        return ReplyMaker(next.command)
            .ended(Outcome::Refused,
                QStringLiteral("The request has %1 bytes; the service takes up to %2.")
                    .arg(request.bytes.size())
                    .arg(largestRequest));
    }
    // Another thread may have cancelled it since it was taken from the queue.
    if (next.request && !next.request->promise->noteWritten())
        return Reply();
    next.tag = request.tag;
    sinceWritten.start();
    deadline.start(next.limit);
    written = std::move(next);
    // A connection that has ended says so by its signal.
    static_cast<void>(connection.send(request.bytes));
    if (connection.isDrained())
        handleDrained();
    emit hasWritten(request.bytes);
    return std::nullopt;
}

bool RequestLine::isAnswer(const QJsonObject &message) const
{
    return written && message.value(tagKey).toString() == written->tag;
}

void RequestLine::extend()
{
    deadline.extend();
}

std::optional<WrittenRequest> RequestLine::take()
{
    deadline.stop();
    std::optional<WrittenRequest> taken = std::exchange(written, std::nullopt);
    if (taken)
        taken->waited = milliseconds(sinceWritten.elapsed());
    return taken;
}

// Also when nothing is left of it, so that an application that closes the client now has sent nothing more.
void RequestLine::pauseAfter(const WrittenRequest &unanswered)
{
    pauseTimer.start(std::max(times.unansweredPause - unanswered.waited, milliseconds(0)));
}

void RequestLine::stopPause()
{
    pauseTimer.stop();
}

void RequestLine::handleDrained()
{
    if (!written || !written->isNeverAnswered || pauseTimer.isActive())
        return;
    deadline.stop();
    pauseTimer.start(times.unansweredPause);
}

void RequestLine::handlePauseEnd()
{
    if (written)
        emit isSent();
    else
        emit freed();
}

} // namespace tarn
