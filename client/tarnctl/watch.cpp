#include "watch.h"

#include "help_text.h"
#include "interrupt_poll.h"
#include "request.h"

#include <QDateTime>

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds retryPeriod(1000);
// When the service notices a disconnection, it sends nothing to any client until the next connection. So it
// must notice the end of the old connection before the new one comes, also on a busy computer; else it would
// send nothing on the new one.
constexpr milliseconds leavePause(800);

constexpr QLatin1StringView eventKind("event");
constexpr QLatin1StringView answerKind("answer");
constexpr QLatin1StringView lateAnswerKind("late-answer");

constexpr QLatin1StringView helpWord("help");
constexpr QLatin1StringView reconnectWord("reconnect");
constexpr QLatin1StringView quitWord("quit");
constexpr QLatin1StringView exitWord("exit");

// The words that the tool itself carries out, and the empty line; all others are sent as commands.
bool isOwnWord(const QString &word)
{
    return word.isEmpty() || word == helpWord || word == reconnectWord || word == quitWord
        || word == exitWord;
}

QString timeStamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
}

} // namespace

Watch::Watch(const ToolOptions &toolOptions, ToolStreams &toolStreams)
    : Session(toolOptions, toolStreams)
{
    connect(&client, &PipeClient::documentReceived, this, &Watch::handleDocument);
    connect(&client, &PipeClient::serviceGone, this, &Watch::handleServiceGone);
    connect(&deadline, &ReplyDeadline::expired, this, &Watch::handleExpiry);
    if (options.verbose)
        connect(&client, &PipeClient::garbageReceived, this, &Watch::remarkGarbage);
}

ExitCode Watch::run()
{
    const InterruptPoll interrupt;
    connect(&interrupt, &InterruptPoll::raised, this, [this] { finish(ExitCode::Done); });
    if (options.duration)
        QTimer::singleShot(*options.duration, this, &Watch::handleDurationEnd);
    tryConnect();
    if (!isFinished()) {
        announceStart();
        reader = std::make_unique<StdinReader>(streams.input);
        connect(reader.get(), &StdinReader::changed, this, &Watch::handleNextLines);
        handleNextLines();
    }
    return waitForFinish();
}

void Watch::announceStart()
{
    if (streams.interactive && client.isOpen()) {
        streams.remark(
            QStringLiteral("Watching the pipe \"%1\". Type a command, help or quit.").arg(options.pipeName));
    }
}

void Watch::tryConnect()
{
    if (isFinished())
        return;
    if (client.open()) {
        handleNextLines();
        return;
    }
    if (!options.reconnect || !client.canEverOpen()) {
        streams.complain(client.openFailureText());
        finish(ExitCode::NoService);
        return;
    }
    retryLater(retryPeriod);
}

void Watch::retryLater(milliseconds pause)
{
    QTimer::singleShot(pause, this, &Watch::tryConnect);
}

void Watch::handleServiceGone()
{
    if (isFinished())
        return;
    const QString unanswered =
        pendingTag.isEmpty() ? QString() : QStringLiteral(" before it answered ") + pending.name;
    pendingTag.clear();
    deadline.stop();
    if (options.reconnect) {
        streams.complain(
            QStringLiteral("The service went away%1; waiting for it to come back.").arg(unanswered));
        retryLater(leavePause);
        return;
    }
    streams.complain(QStringLiteral("The service went away%1.\nStart it again (./run, or the service \"Tarn "
                                    "Service\" on Windows); --reconnect waits for it.")
                         .arg(unanswered));
    finish(ExitCode::NoService);
}

void Watch::handleDocument(const QByteArray &bytes)
{
    if (isFinished())
        return;
    const std::optional<Message> message = Message::parse(bytes);
    if (!message) {
        if (options.verbose)
            remarkGarbage(bytes);
        return;
    }
    if (message->answers(pendingTag)) {
        showAnswer(*message);
        return;
    }
    deadline.extend();
    if (message->hasTag()) {
        show(lateAnswerKind, message->lineText(findCommand(message->command())), message->json());
        return;
    }
    showNotification(*message);
}

void Watch::showNotification(const Message &message)
{
    show(eventKind, message.notificationText(), message.json());
    ++notifications;
    if (options.count && notifications >= *options.count)
        endWatching();
}

void Watch::showAnswer(const Message &message)
{
    pendingTag.clear();
    deadline.stop();
    show(answerKind, message.lineText(findCommand(pending.name)), message.json());
    handleNextLines();
}

void Watch::show(QLatin1StringView kind, const QString &text, const QByteArray &json)
{
    if (options.json)
        print(json);
    else
        print(timeStamp() + u' ' + kind + u' ' + text);
}

void Watch::handleNextLines()
{
    while (reader && client.isOpen() && !pausing && !isFinished()) {
        const bool isWaiting = !pendingTag.isEmpty();
        const std::optional<QString> line = isWaiting ? takeUrgentLine() : reader->takeLine();
        if (line) {
            handleLine(*line);
            continue;
        }
        // A user who ends the input at a terminal wants to quit; a script without further commands may want
        // to go on watching.
        if (!isWaiting && streams.interactive && reader->isExhausted())
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
    const QString word = parseTypedLine(*line).name;
    return word == helpWord || word == reconnectWord ? reader->takeLine() : std::nullopt;
}

void Watch::handleLine(const QString &line)
{
    const TypedCommand command = parseTypedLine(line);
    if (command.name.isEmpty())
        return;
    if (command.name == quitWord || command.name == exitWord)
        finish(ExitCode::Done);
    else if (command.name == helpWord)
        showHelp(command);
    else if (command.name == reconnectWord)
        connectAnew();
    else
        sendCommand(command);
}

void Watch::showHelp(const TypedCommand &command)
{
    if (!command.data) {
        streams.remark(typingHelp());
        return;
    }
    const std::optional<QString> text = topicHelp(*command.data);
    streams.remark(text.value_or(unknownCommandText(*command.data)));
}

void Watch::sendCommand(const TypedCommand &command)
{
    std::optional<QString> objection = options.force ? std::nullopt : commandObjection(command);
    if (objection && findCommand(command.name) == nullptr && topicHelp(command.name)) {
        objection =
            QStringLiteral("\"%1\" cannot be typed here; run \"tarnctl %1\" by itself.").arg(command.name);
    }
    if (objection) {
        streams.complain(*objection);
        return;
    }
    const Request request = buildRequest(command);
    if (!client.send(request.bytes)) {
        // The lost connection is reported by serviceGone().
        return;
    }
    if (!getsNoAnswer(command)) {
        pending = command;
        pendingTag = request.tag;
        deadline.start(timeoutFor(findCommand(command.name)));
        return;
    }
    pausing = true;
    QTimer::singleShot(unansweredPause, this, [this, name = command.name] {
        pausing = false;
        if (!options.json)
            show(answerKind, name + u' ' + sentText, {});
        handleNextLines();
    });
}

void Watch::connectAnew()
{
    client.close();
    streams.remark(pendingTag.isEmpty()
            ? QStringLiteral("Connecting again.")
            : QStringLiteral("Connecting again; if %1 is still answered, it shows as a late answer.")
                  .arg(pending.name));
    pendingTag.clear();
    deadline.stop();
    retryLater(leavePause);
}

void Watch::handleExpiry()
{
    streams.complain(noAnswerText(pending.name, deadline.timeout())
        + QStringLiteral("\nIf another client has come and gone, type reconnect."));
    pendingTag.clear();
    handleNextLines();
}

// Reports commands without an answer and commands not sent, so that a script does not take them for done.
void Watch::endWatching()
{
    QStringList left;
    if (!pendingTag.isEmpty())
        left << QStringLiteral("No answer to %1 has come yet.").arg(pending.name);
    int unsent = 0;
    QString first;
    while (const std::optional<QString> line = reader ? reader->takeLine() : std::nullopt) {
        const TypedCommand command = parseTypedLine(*line);
        if (!isOwnWord(command.name) && unsent++ == 0)
            first = line->trimmed();
    }
    if (unsent > 0) {
        left << (unsent == 1
                ? QStringLiteral("Not sent any more: %1").arg(first)
                : QStringLiteral("Not sent any more: %1, and %2 after it.").arg(first).arg(unsent - 1));
    }
    if (!left.isEmpty())
        streams.complain(QStringLiteral("The watching ends.\n") + left.join(u'\n'));
    finish(left.isEmpty() ? ExitCode::Done : ExitCode::NoAnswer);
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
                         .arg(durationText(*options.duration)));
    finish(ExitCode::NoAnswer);
}

} // namespace tarnClient
