#include "raw_exchange.h"

#include <QJsonDocument>

namespace tarnClient {

RawExchange::RawExchange(const ToolOptions &options, ToolStreams &streams, QByteArray bytes)
    : Session(options, streams)
    , m_bytes(std::move(bytes))
    , m_request(QJsonDocument::fromJson(m_bytes).object())
{
    connect(&m_client, &PipeClient::documentReceived, this, &RawExchange::handleDocument);
    connect(&m_client, &PipeClient::garbageReceived, this, &RawExchange::remarkGarbage);
    connect(&m_client, &PipeClient::serviceGone, this, &RawExchange::handleServiceGone);
    connect(&m_deadline, &ReplyDeadline::expired, this, &RawExchange::handleExpiry);
}

ExitCode RawExchange::run()
{
    if (!connectService())
        return ExitCode::NoService;
    const CommandEntry *entry = findCommand(m_request.value(QLatin1StringView("cmd")).toString());
    m_deadline.start(m_options.duration.value_or(timeoutFor(entry)));
    if (!m_client.send(m_bytes))
        handleServiceGone();
    return waitForFinish();
}

void RawExchange::handleDocument(const QByteArray &bytes)
{
    if (isFinished())
        return;
    ++m_received;
    print(bytes);
    if (isLast(bytes))
        finish(ExitCode::Done);
    else if (!m_options.duration)
        m_deadline.extend();
}

bool RawExchange::isLast(const QByteArray &bytes) const
{
    if (m_options.count)
        return m_received >= *m_options.count;
    if (m_options.duration)
        return false;
    const std::optional<Message> message = Message::parse(bytes);
    return message && message->echoes(m_request);
}

void RawExchange::handleExpiry()
{
    const bool asPlanned = m_options.duration && !m_options.count;
    if (asPlanned) {
        finish(ExitCode::Done);
        return;
    }
    const QString got = m_received == 0
        ? QStringLiteral("Nothing came back")
        : QStringLiteral("%1 message(s) came back, but not all that were waited for,").arg(m_received);
    m_streams.complain(QStringLiteral("%1 within %2.\nThe service answers malformed requests and unknown "
                                      "commands with silence; its log tells which it was.")
                           .arg(got, durationText(m_deadline.timeout())));
    finish(ExitCode::NoAnswer);
}

void RawExchange::handleServiceGone()
{
    if (isFinished())
        return;
    m_streams.complain(
        QStringLiteral("The service closed the connection.\nSee its log, and start it again if it "
                       "has ended."));
    finish(ExitCode::NoService);
}

} // namespace tarnClient
