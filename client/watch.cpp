#include "watch.h"

#include "help_text.h"
#include "interrupt_poll.h"
#include "request.h"

#include <QDateTime>

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds retryPeriod(1000);
// When a connection ends, the service writes to nobody until the next one comes. So it has to notice the end
// of the old connection first, also on a busy computer; noticed after it, that would silence the new one.
constexpr milliseconds leavePause(800);

constexpr QLatin1StringView eventKind("event");
constexpr QLatin1StringView answerKind("answer");
constexpr QLatin1StringView lateAnswerKind("late-answer");

constexpr QLatin1StringView helpWord("help");
constexpr QLatin1StringView reconnectWord("reconnect");
constexpr QLatin1StringView quitWord("quit");
constexpr QLatin1StringView exitWord("exit");

// What is typed to the tool itself, an empty line included; all else is to be sent.
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

Watch::Watch(const ToolOptions &options, ToolStreams &streams)
    : Session(options, streams)
{
    connect(&m_client, &PipeClient::documentReceived, this, &Watch::handleDocument);
    connect(&m_client, &PipeClient::serviceGone, this, &Watch::handleServiceGone);
    connect(&m_deadline, &ReplyDeadline::expired, this, &Watch::handleExpiry);
    if (m_options.verbose)
        connect(&m_client, &PipeClient::garbageReceived, this, &Watch::remarkGarbage);
}

ExitCode Watch::run()
{
    const InterruptPoll interrupt;
    connect(&interrupt, &InterruptPoll::raised, this, [this] { finish(ExitCode::Done); });
    if (m_options.duration)
        QTimer::singleShot(*m_options.duration, this, &Watch::handleDurationEnd);
    tryConnect();
    if (!isFinished()) {
        announceStart();
        m_reader = std::make_unique<StdinReader>(m_streams.input);
        connect(m_reader.get(), &StdinReader::changed, this, &Watch::handleNextLines);
        handleNextLines();
    }
    return waitForFinish();
}

void Watch::announceStart()
{
    if (m_streams.interactive && m_client.isOpen()) {
        m_streams.remark(QStringLiteral("Watching the pipe \"%1\". Type a command, help or quit.")
                             .arg(m_options.pipeName));
    }
}

void Watch::tryConnect()
{
    if (isFinished())
        return;
    if (m_client.open()) {
        handleNextLines();
        return;
    }
    if (!m_options.reconnect || !m_client.canEverOpen()) {
        m_streams.complain(m_client.openFailureText());
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
        m_pendingTag.isEmpty() ? QString() : QStringLiteral(" before it answered ") + m_pending.name;
    m_pendingTag.clear();
    m_deadline.stop();
    if (m_options.reconnect) {
        m_streams.complain(
            QStringLiteral("The service went away%1; waiting for it to come back.").arg(unanswered));
        retryLater(leavePause);
        return;
    }
    m_streams.complain(
        QStringLiteral("The service went away%1.\nStart it again (./run, or the service \"Tarn "
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
        if (m_options.verbose)
            remarkGarbage(bytes);
        return;
    }
    if (message->answers(m_pendingTag)) {
        showAnswer(*message);
        return;
    }
    m_deadline.extend();
    if (message->hasTag()) {
        show(lateAnswerKind, message->lineText(findCommand(message->command())), message->json());
        return;
    }
    showNotification(*message);
}

void Watch::showNotification(const Message &message)
{
    show(eventKind, message.notificationText(), message.json());
    ++m_notifications;
    if (m_options.count && m_notifications >= *m_options.count)
        endWatching();
}

void Watch::showAnswer(const Message &message)
{
    m_pendingTag.clear();
    m_deadline.stop();
    show(answerKind, message.lineText(findCommand(m_pending.name)), message.json());
    handleNextLines();
}

void Watch::show(QLatin1StringView kind, const QString &text, const QByteArray &json)
{
    if (m_options.json)
        print(json);
    else
        print(timeStamp() + u' ' + kind + u' ' + text);
}

void Watch::handleNextLines()
{
    while (m_reader && m_client.isOpen() && !m_lingering && !isFinished()) {
        const bool isWaiting = !m_pendingTag.isEmpty();
        const std::optional<QString> line = isWaiting ? takeUrgentLine() : m_reader->takeLine();
        if (line) {
            handleLine(*line);
            continue;
        }
        // A person who ends the input wants to leave; a script that has no more commands may well want to go
        // on watching.
        if (!isWaiting && m_streams.interactive && m_reader->isExhausted())
            finish(ExitCode::Done);
        return;
    }
}

// A person whose answer does not come, because another client came and went, need not wait for the end of the
// time limit. The lines of a script keep their order.
std::optional<QString> Watch::takeUrgentLine()
{
    const std::optional<QString> line = m_streams.interactive ? m_reader->nextLine() : std::nullopt;
    if (!line)
        return std::nullopt;
    const QString word = parseTypedLine(*line).name;
    return word == helpWord || word == reconnectWord ? m_reader->takeLine() : std::nullopt;
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
        m_streams.remark(typingHelp());
        return;
    }
    const std::optional<QString> text = topicHelp(*command.data);
    m_streams.remark(text.value_or(unknownCommandText(*command.data)));
}

void Watch::sendCommand(const TypedCommand &command)
{
    std::optional<QString> objection = m_options.force ? std::nullopt : commandObjection(command);
    if (objection && findCommand(command.name) == nullptr && topicHelp(command.name)) {
        objection =
            QStringLiteral("\"%1\" cannot be typed here; run \"tarnctl %1\" by itself.").arg(command.name);
    }
    if (objection) {
        m_streams.complain(*objection);
        return;
    }
    const Request request = buildRequest(command);
    if (!m_client.send(request.bytes)) {
        // The loss of the connection is reported by its own signal.
        return;
    }
    if (!isAnsweredBySilence(command)) {
        m_pending = command;
        m_pendingTag = request.tag;
        m_deadline.start(timeoutFor(findCommand(command.name)));
        return;
    }
    m_lingering = true;
    QTimer::singleShot(silentLinger, this, [this, name = command.name] {
        m_lingering = false;
        if (!m_options.json)
            show(answerKind, name + u' ' + sentText, {});
        handleNextLines();
    });
}

void Watch::connectAnew()
{
    m_client.close();
    m_streams.remark(m_pendingTag.isEmpty()
            ? QStringLiteral("Connecting again.")
            : QStringLiteral("Connecting again; if %1 is still answered, it shows as a late answer.")
                  .arg(m_pending.name));
    m_pendingTag.clear();
    m_deadline.stop();
    retryLater(leavePause);
}

void Watch::handleExpiry()
{
    m_streams.complain(noAnswerText(m_pending.name, m_deadline.timeout())
        + QStringLiteral("\nIf another client has come and gone, type reconnect."));
    m_pendingTag.clear();
    handleNextLines();
}

// A script has to learn that commands of its own were left over.
void Watch::endWatching()
{
    QStringList left;
    if (!m_pendingTag.isEmpty())
        left << QStringLiteral("No answer to %1 has come yet.").arg(m_pending.name);
    int unsent = 0;
    QString first;
    while (const std::optional<QString> line = m_reader ? m_reader->takeLine() : std::nullopt) {
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
        m_streams.complain(QStringLiteral("The watching ends.\n") + left.join(u'\n'));
    finish(left.isEmpty() ? ExitCode::Done : ExitCode::NoAnswer);
}

void Watch::handleDurationEnd()
{
    if (!m_options.count) {
        endWatching();
        return;
    }
    m_streams.complain(QStringLiteral("%1 of %2 notifications came within %3.")
                           .arg(m_notifications)
                           .arg(*m_options.count)
                           .arg(durationText(*m_options.duration)));
    finish(ExitCode::NoAnswer);
}

} // namespace tarnClient
