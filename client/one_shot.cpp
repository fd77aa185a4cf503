#include "one_shot.h"

#include "request.h"

namespace tarnClient {

namespace {

// A person at a terminal who has waited this long wants to know how long it can take.
constexpr std::chrono::milliseconds patience(3000);

} // namespace

OneShot::OneShot(const ToolOptions &options, ToolStreams &streams, TypedCommand command)
    : Session(options, streams)
    , m_command(std::move(command))
    , m_entry(findCommand(m_command.name))
{
    connect(&m_client, &PipeClient::documentReceived, this, &OneShot::handleDocument);
    connect(&m_client, &PipeClient::serviceGone, this, &OneShot::handleServiceGone);
    connect(&m_deadline, &ReplyDeadline::expired, this, &OneShot::handleExpiry);
    if (m_options.verbose)
        connect(&m_client, &PipeClient::garbageReceived, this, &OneShot::remarkGarbage);
}

ExitCode OneShot::run()
{
    if (!connectService())
        return ExitCode::NoService;
    const Request request = buildRequest(m_command);
    m_tag = request.tag;
    m_deadline.start(timeoutFor(m_entry));
    if (!m_client.send(request.bytes))
        handleServiceGone();
    else if (isAnsweredBySilence(m_command))
        return runSilently();
    if (m_streams.interactive)
        QTimer::singleShot(patience, this, &OneShot::remarkWaiting);
    return waitForFinish();
}

void OneShot::remarkWaiting()
{
    if (!isFinished()) {
        m_streams.remark(QStringLiteral("Waiting for the answer to %1, up to %2.")
                             .arg(m_command.name, durationText(m_deadline.timeout())));
    }
}

ExitCode OneShot::runSilently()
{
    const auto linger = [this] {
        m_deadline.stop();
        QTimer::singleShot(silentLinger, this, [this] {
            if (!isFinished() && !m_options.json)
                print(sentText.toString());
            finish(ExitCode::Done);
        });
    };
    if (m_client.isDrained())
        linger();
    else
        connect(&m_client, &PipeClient::drained, this, linger, Qt::SingleShotConnection);
    return waitForFinish();
}

void OneShot::handleDocument(const QByteArray &bytes)
{
    if (isFinished())
        return;
    const std::optional<Message> message = takeAnswer(m_tag, bytes);
    if (!message)
        return;
    printAnswer(*message, m_entry);
    finish(message->tellsFailure(m_entry) ? ExitCode::ServiceFailed : ExitCode::Done);
}

void OneShot::handleExpiry()
{
    m_streams.complain(noAnswerText(m_command.name, m_deadline.timeout()));
    finish(ExitCode::NoAnswer);
}

void OneShot::handleServiceGone()
{
    if (isFinished())
        return;
    m_streams.complain(
        QStringLiteral("The service went away before it answered %1.\nStart it again (./run, or "
                       "the service \"Tarn Service\" on Windows) and repeat the command.")
            .arg(m_command.name));
    finish(ExitCode::NoService);
}

} // namespace tarnClient
