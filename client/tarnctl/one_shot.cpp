#include "one_shot.h"

#include "request.h"

namespace tarnClient {

namespace {

// At a terminal: after this time the user is told how long the answer can take.
constexpr std::chrono::milliseconds remarkAfter(3000);

} // namespace

OneShot::OneShot(const ToolOptions &toolOptions, ToolStreams &toolStreams, TypedCommand typedCommand)
    : Session(toolOptions, toolStreams)
    , command(std::move(typedCommand))
    , entry(findCommand(command.name))
{
    connect(&client, &PipeClient::documentReceived, this, &OneShot::handleDocument);
    connect(&client, &PipeClient::serviceGone, this, &OneShot::handleServiceGone);
    connect(&deadline, &ReplyDeadline::expired, this, &OneShot::handleExpiry);
    if (options.verbose)
        connect(&client, &PipeClient::garbageReceived, this, &OneShot::remarkGarbage);
}

ExitCode OneShot::run()
{
    if (!connectService())
        return ExitCode::NoService;
    const Request request = buildRequest(command);
    tag = request.tag;
    deadline.start(timeoutFor(entry));
    if (!client.send(request.bytes))
        handleServiceGone();
    else if (getsNoAnswer(command))
        return runSilently();
    if (streams.interactive)
        QTimer::singleShot(remarkAfter, this, &OneShot::remarkWaiting);
    return waitForFinish();
}

void OneShot::remarkWaiting()
{
    if (!isFinished()) {
        streams.remark(QStringLiteral("Waiting for the answer to %1, up to %2.")
                           .arg(command.name, durationText(deadline.timeout())));
    }
}

ExitCode OneShot::runSilently()
{
    const auto linger = [this] {
        deadline.stop();
        QTimer::singleShot(unansweredPause, this, [this] {
            if (!isFinished() && !options.json)
                print(sentText.toString());
            finish(ExitCode::Done);
        });
    };
    if (client.isDrained())
        linger();
    else
        connect(&client, &PipeClient::drained, this, linger, Qt::SingleShotConnection);
    return waitForFinish();
}

void OneShot::handleDocument(const QByteArray &bytes)
{
    if (isFinished())
        return;
    const std::optional<Message> message = takeAnswer(tag, bytes);
    if (!message)
        return;
    printAnswer(*message, entry);
    finish(message->tellsFailure(entry) ? ExitCode::ServiceFailed : ExitCode::Done);
}

void OneShot::handleExpiry()
{
    streams.complain(noAnswerText(command.name, deadline.timeout()));
    finish(ExitCode::NoAnswer);
}

void OneShot::handleServiceGone()
{
    if (isFinished())
        return;
    streams.complain(QStringLiteral("The service went away before it answered %1.\nStart it again (./run, or "
                                    "the service \"Tarn Service\" on Windows) and repeat the command.")
                         .arg(command.name));
    finish(ExitCode::NoService);
}

} // namespace tarnClient
