#include "watch.h"

#include "answer_text.h"
#include "client/reply_deadline.h"
#include "interrupt_poll.h"
#include "typed_line.h"
#include "watch_text.h"

#include <QDateTime>

namespace tarnctl {

namespace {

using tarn::Client;
using tarn::Outcome;

// In which a command is written, unless a question of the client's own is before it.
constexpr std::chrono::milliseconds writingTime(500);

constexpr QLatin1StringView eventKind("event");
constexpr QLatin1StringView answerKind("answer");
constexpr QLatin1StringView lateAnswerKind("late-answer");

QString timeStamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
}

} // namespace

Watch::Watch(const ToolOptions &toolOptions, ToolStreams &toolStreams, const tarn::ClientTimes &times)
    : ClientTask(toolOptions, toolStreams, times)
    , silence(times.lossMemory)
    , writingTimer(this)
{
    // To be the service's client at any price is for those who ask for it: the answer for which an update by
    // another tarnctl waits would come here.
    client.setLooksForSilence(options.reconnect);
    connect(&client, &Client::stateChanged, this, &Watch::handleState);
    connect(&client, &Client::connectingFailed, this, &Watch::handleConnectingFailed);
    connect(&client, &Client::notificationReceived, this, &Watch::showNotification);
    connect(&client, &Client::otherMessageReceived, this, &Watch::showLateAnswer);
    connect(&sending, &QFutureWatcherBase::progressValueChanged, this, &Watch::handleNextLines);
    writingTimer.setSingleShot(true);
    connect(&writingTimer, &QTimer::timeout, this, &Watch::handleNextLines);
    if (options.verbose)
        connect(&client, &Client::garbageReceived, this, &Watch::remarkGarbage);
}

ExitCode Watch::run()
{
    const InterruptPoll interrupt;
    connect(&interrupt, &InterruptPoll::raised, this, [this] { finish(ExitCode::Done); });
    if (options.duration)
        QTimer::singleShot(*options.duration, this, &Watch::handleDurationEnd);
    client.open();
    return waitForFinish();
}

void Watch::handleState(Client::State state)
{
    if (isFinished())
        return;
    if (state == Client::State::Connected) {
        silence.noteConnection();
        beginReading();
    } else if (client.problem() == Client::Problem::ServiceGone) {
        handleServiceGone();
    } else if (client.problem() == Client::Problem::Silence) {
        if (const std::optional<QString> text = silence.takeText(state == Client::State::TakenOver))
            streams.complain(*text);
    }
}

void Watch::handleServiceGone()
{
    silence.forget();
    if (!options.reconnect) {
        streams.complain(lastGoneText(pending, isWritten()));
        finish(ExitCode::NoService);
        return;
    }
    // With a command that waits for its answer, handleReply() tells it.
    if (!pending || !isWritten())
        streams.complain(QStringLiteral("The service went away; waiting for it to come back."));
}

void Watch::handleConnectingFailed(Client::Problem problem)
{
    if (problem == Client::Problem::NoService)
        silence.forget();
    if (!options.reconnect || problem == Client::Problem::NameTooLong)
        finishWithoutService();
    else
        beginReading();
}

void Watch::showNotification(const tarn::Notification &notification)
{
    if (isFinished())
        return;
    show(eventKind, notificationLine(notification), compactJson(notification));
    ++notifications;
    if (options.count && notifications >= *options.count)
        endWatching();
}

void Watch::showLateAnswer(const QJsonObject &answer)
{
    if (!isFinished())
        show(lateAnswerKind, lateAnswerLine(answer), compactJson(answer));
}

void Watch::handleReply(const tarn::Reply &reply)
{
    if (!pending || isFinished())
        return;
    if (mustSendAgain(reply)) {
        isHeld = true;
        handleNextLines();
        return;
    }
    const TypedCommand command = *std::exchange(pending, std::nullopt);
    switch (reply.outcome()) {
    case Outcome::Answered:
    case Outcome::Failed:
        show(answerKind, answerLine(reply.command(), reply.answer()), compactJson(reply.answer()));
        break;
    case Outcome::Sent:
        if (!options.json)
            show(answerKind, reply.command() + u' ' + sentText, {});
        break;
    case Outcome::NoAnswer:
    case Outcome::ServiceGone:
    case Outcome::Refused:
        streams.complain(complaintText(reply, command, client.state() == Client::State::Connected));
        break;
    }
    handleNextLines();
}

// Nobody is there to type a script's command once more.
bool Watch::mustSendAgain(const tarn::Reply &reply) const
{
    return !streams.interactive && reply.outcome() == Outcome::ServiceGone && !reply.wasSent();
}

void Watch::show(QLatin1StringView kind, const QString &text, const QByteArray &json)
{
    if (options.json)
        print(json);
    else
        print(timeStamp() + u' ' + kind + u' ' + text);
}

void Watch::beginReading()
{
    const bool isConnected = client.state() == Client::State::Connected;
    if (isConnected && streams.interactive && !std::exchange(isGreeted, true)) {
        streams.remark(
            QStringLiteral("Watching the pipe \"%1\". Type a command, help or quit.").arg(options.pipeName));
    }
    if (!reader) {
        reader = std::make_unique<StdinReader>(streams.input);
        connect(reader.get(), &StdinReader::changed, this, &Watch::handleNextLines);
    }
    handleNextLines();
}

void Watch::handleNextLines()
{
    const bool isConnected = client.state() == Client::State::Connected;
    if (isConnected && std::exchange(isHeld, false))
        sendPending();
    while (reader && !isFinished()) {
        // A script's commands wait for the connection; a user is told when there is none.
        const bool isHeard = streams.interactive || client.state() == Client::State::Connected;
        const std::optional<QString> line = isHeard && !pending ? reader->takeLine() : takeUrgentLine();
        if (line) {
            handleLine(*line);
            continue;
        }
        // A user who ends the input at a terminal wants to quit; a script without further commands may want
        // to go on watching.
        if (!pending && streams.interactive && reader->isExhausted())
            finish(ExitCode::Done);
        return;
    }
}

// At a terminal, help and reconnect are taken while an answer is pending, because it may never come when
// another client came and went. The lines of a script keep their order.
std::optional<QString> Watch::takeUrgentLine()
{
    const std::optional<QString> line = streams.interactive ? reader->nextLine() : std::nullopt;
    if (!line)
        return std::nullopt;
    const TypedAction action = typedAction(parseTypedLine(*line));
    const bool isUrgent = action == TypedAction::Help || (action == TypedAction::Reconnect && mayReconnect());
    return isUrgent ? reader->takeLine() : std::nullopt;
}

// A command that is just being sent shall reach the service first, and so shall one to which no answer tells
// that it did.
bool Watch::mayReconnect() const
{
    if (!pending || client.state() != Client::State::Connected)
        return true;
    return isWritten() ? !isNeverAnswered(*pending) : !writingTimer.isActive();
}

bool Watch::isWritten() const
{
    return sending.progressValue() > 0;
}

void Watch::handleLine(const QString &line)
{
    const TypedCommand command = parseTypedLine(line);
    switch (typedAction(command)) {
    case TypedAction::Nothing:
        return;
    case TypedAction::Help:
        streams.remark(typedHelp(command));
        return;
    case TypedAction::Reconnect:
        connectAnew();
        return;
    case TypedAction::Quit:
        finish(ExitCode::Done);
        return;
    case TypedAction::Send:
        sendCommand(command);
        return;
    }
}

void Watch::sendCommand(const TypedCommand &command)
{
    const std::optional<QString> objection = options.force ? std::nullopt : typedObjection(command);
    if (objection) {
        streams.complain(*objection);
        return;
    }
    pending = command;
    sendPending();
}

void Watch::sendPending()
{
    writingTimer.start(writingTime);
    QFuture<tarn::Reply> future = send(*pending);
    sending.setFuture(future);
    future.then(this, [this](const tarn::Reply &reply) { handleReply(reply); });
}

void Watch::connectAnew()
{
    const bool isConnected = client.state() == Client::State::Connected;
    streams.remark(reconnectText(pending, isWritten(), isConnected));
    const bool isKept = isConnected && !isWritten();
    const std::optional<TypedCommand> kept = isKept ? pending : std::nullopt;
    pending.reset();
    silence.forget();
    client.close();
    client.open();
    pending = kept;
    if (pending)
        sendPending();
}

// Reports commands without an answer and commands not sent, so that a script does not take them for done.
void Watch::endWatching()
{
    QStringList lines;
    while (const std::optional<QString> line = reader ? reader->takeLine() : std::nullopt)
        lines << *line;
    const std::optional<QString> left = unfinishedText(pending, isWritten(), lines);
    if (left)
        streams.complain(QStringLiteral("The watching ends.\n") + *left);
    finish(left ? ExitCode::NoAnswer : ExitCode::Done);
}

void Watch::handleDurationEnd()
{
    if (!options.count) {
        endWatching();
        return;
    }
    streams.complain(QStringLiteral("%1 of %2 notifications came within %3.")
                         .arg(notifications)
                         .arg(*options.count)
                         .arg(tarn::durationText(*options.duration)));
    finish(ExitCode::NoAnswer);
}

} // namespace tarnctl
