#include "one_shot.h"

#include "answer_text.h"
#include "client/command_catalogue.h"
#include "client/reply_deadline.h"
#include "no_answer_text.h"

#include <QTimer>

namespace tarnctl {

namespace {

using tarn::Client;
using tarn::Outcome;

// At a terminal: after this time the user is told how long the answer can take.
constexpr std::chrono::milliseconds remarkAfter(3000);

} // namespace

OneShot::OneShot(const ToolOptions &toolOptions, ToolStreams &toolStreams, TypedCommand typedCommand)
    : ClientTask(toolOptions, toolStreams)
    , command(std::move(typedCommand))
{
    connect(&client, &Client::connectingFailed, this, &OneShot::finishWithoutService);
    if (options.verbose)
        remarkOtherMessages();
}

ExitCode OneShot::run()
{
    client.open();
    send(command).then(this, [this](const tarn::Reply &reply) { handleReply(reply); });
    if (streams.interactive)
        QTimer::singleShot(remarkAfter, this, &OneShot::remarkWaiting);
    return waitForFinish();
}

void OneShot::remarkWaiting()
{
    if (isFinished())
        return;
    const std::chrono::milliseconds limit = options.timeout.value_or(tarn::usualLimit(command.name));
    streams.remark(QStringLiteral("Waiting for the answer to %1, up to %2.")
                       .arg(command.name, tarn::durationText(limit)));
}

void OneShot::handleReply(const tarn::Reply &reply)
{
    if (isFinished())
        return;
    switch (reply.outcome()) {
    case Outcome::Answered:
    case Outcome::Failed:
    case Outcome::Sent:
        showAnswer(reply);
        finish(reply.outcome() == Outcome::Failed ? ExitCode::ServiceFailed : ExitCode::Done);
        return;
    case Outcome::NoAnswer:
        streams.complain(noAnswerText(reply.command(), reply.reason()));
        finish(ExitCode::NoAnswer);
        return;
    case Outcome::ServiceGone:
        streams.complain(reply.reason()
            + QStringLiteral("\nStart it again (./run, or the service \"Tarn Service\" on Windows) and "
                             "repeat the command."));
        finish(ExitCode::NoService);
        return;
    case Outcome::Refused:
        streams.complain(reply.reason());
        finish(ExitCode::Usage);
        return;
    }
}

void OneShot::showAnswer(const tarn::Reply &reply)
{
    const bool isSent = reply.outcome() == Outcome::Sent;
    if (!options.json)
        print(isSent ? sentText.toString() : answerText(reply.command(), reply.answer()));
    else if (!isSent)
        print(compactJson(reply.answer()));
}

} // namespace tarnctl
