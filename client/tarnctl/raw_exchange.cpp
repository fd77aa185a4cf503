#include "raw_exchange.h"

#include <QJsonDocument>

namespace tarnClient {

RawExchange::RawExchange(const ToolOptions &toolOptions, ToolStreams &toolStreams, QByteArray givenBytes)
    : Session(toolOptions, toolStreams)
    , bytes(std::move(givenBytes))
    , request(QJsonDocument::fromJson(bytes).object())
{
    connect(&client, &PipeClient::documentReceived, this, &RawExchange::handleDocument);
    connect(&client, &PipeClient::garbageReceived, this, &RawExchange::remarkGarbage);
    connect(&client, &PipeClient::serviceGone, this, &RawExchange::handleServiceGone);
    connect(&deadline, &ReplyDeadline::expired, this, &RawExchange::handleExpiry);
}

ExitCode RawExchange::run()
{
    if (!connectService())
        return ExitCode::NoService;
    const CommandEntry *entry = findCommand(request.value(QLatin1StringView("cmd")).toString());
    deadline.start(options.duration.value_or(timeoutFor(entry)));
    if (!client.send(bytes))
        handleServiceGone();
    return waitForFinish();
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
    const std::optional<Message> message = Message::parse(document);
    return message && message->echoes(request);
}

void RawExchange::handleExpiry()
{
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
            .arg(got, durationText(deadline.timeout())));
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

} // namespace tarnClient
