#include "raw_exchange.h"

#include "client/command_catalogue.h"
#include "client/pipe_problem.h"
#include "client/request.h"
#include "connect_failure.h"

#include <QJsonDocument>

namespace tarnctl {

bool echoes(const QJsonObject &message, const QJsonObject &request)
{
    for (auto field = request.constBegin(); field != request.constEnd(); ++field) {
        if (message.value(field.key()) != field.value())
            return false;
    }
    return !request.isEmpty();
}

RawExchange::RawExchange(const ToolOptions &toolOptions, ToolStreams &toolStreams, QByteArray givenBytes)
    : Task(toolOptions, toolStreams)
    , connection(options.pipeName)
    , bytes(std::move(givenBytes))
    , request(QJsonDocument::fromJson(bytes).object())
{
    connect(&connection, &tarn::PipeConnection::opened, this, &RawExchange::handleOpened);
    connect(&connection, &tarn::PipeConnection::openFailed, this, &RawExchange::handleOpenFailed);
    connect(&connection, &tarn::PipeConnection::documentReceived, this, &RawExchange::handleDocument);
    connect(&connection, &tarn::PipeConnection::garbageReceived, this, &RawExchange::remarkGarbage);
    connect(&connection, &tarn::PipeConnection::serviceGone, this, &RawExchange::handleServiceGone);
    connect(&deadline, &tarn::ReplyDeadline::expired, this, &RawExchange::handleExpiry);
    connect(this, &Task::finished, &deadline, &tarn::ReplyDeadline::stop);
    connect(this, &Task::finished, &connection, &tarn::PipeConnection::close);
}

ExitCode RawExchange::run()
{
    connection.open();
    return waitForFinish();
}

void RawExchange::handleOpened()
{
    const std::chrono::milliseconds usual = tarn::usualLimit(request.value(tarn::commandKey).toString());
    deadline.start(options.duration.value_or(options.timeout.value_or(usual)));
    if (!connection.send(bytes))
        handleServiceGone();
}

void RawExchange::handleOpenFailed(const tarn::PipeFailure &failure)
{
    streams.complain(connectFailureText(options.pipeName, tarn::problemOf(failure.kind), failure.text));
    finish(ExitCode::NoService);
}

void RawExchange::handleDocument(const QByteArray &document)
{
    if (isFinished())
        return;
    ++received;
    print(document);
    if (isLast(document))
        finish(ExitCode::Done);
    else if (!options.duration)
        deadline.extend();
}

bool RawExchange::isLast(const QByteArray &document) const
{
    if (options.count)
        return received >= *options.count;
    if (options.duration)
        return false;
    return echoes(QJsonDocument::fromJson(document).object(), request);
}

void RawExchange::handleExpiry()
{
    if (isFinished())
        return;
    const bool asPlanned = options.duration && !options.count;
    if (asPlanned) {
        finish(ExitCode::Done);
        return;
    }
    const QString got = received == 0
        ? QStringLiteral("Nothing came back")
        : QStringLiteral("%1 message(s) came back, but not all that were waited for,").arg(received);
    streams.complain(
        QStringLiteral("%1 within %2.\nThe service does not answer malformed requests and unknown "
                       "commands; see its log.")
            .arg(got, tarn::durationText(deadline.timeout())));
    finish(ExitCode::NoAnswer);
}

void RawExchange::handleServiceGone()
{
    if (isFinished())
        return;
    streams.complain(
        QStringLiteral("The service closed the connection.\nSee its log, and start it again if it "
                       "has ended."));
    finish(ExitCode::NoService);
}

} // namespace tarnctl
