#include "session.h"

namespace tarnClient {

namespace {

// For a command that this tool does not know.
constexpr std::chrono::seconds unknownCommandTimeout(10);
constexpr qsizetype mostGarbageShown = 200;

} // namespace

bool getsNoAnswer(const TypedCommand &command)
{
    const CommandEntry *entry = findCommand(command.name);
    return entry != nullptr && !entry->unansweredData.isEmpty() && command.data == entry->unansweredData;
}

QString noAnswerText(const QString &command, std::chrono::milliseconds timeout)
{
    const CommandEntry *entry = findCommand(command);
    QLatin1StringView reasons("Another client may have taken it");
    if (entry == nullptr) {
        reasons = QLatin1StringView("This service may not know the command, or another client may have taken "
                                    "the answer");
    } else if (entry->needsEc) {
        // The reserved EC comes first, because neither waiting nor a new connection helps against it.
        reasons = QLatin1StringView(
            "First see whether the EC is reserved: after an EC update or requestStartEcUpdate "
            "it stays so until the service is restarted, after requestEnterMcuUpdateMode until "
            "requestLeaveMcuUpdateMode.\n"
            "Else another client may have taken the answer, an update or the tool of an earlier "
            "one may still run, or the EC may be stuck");
    }
    return QStringLiteral(
        "No answer to %1 within %2.\n%3: look at the service's log, or try again with a longer "
        "--timeout.")
        .arg(command, durationText(timeout), reasons);
}

Session::Session(const ToolOptions &toolOptions, ToolStreams &toolStreams)
    : options(toolOptions)
    , streams(toolStreams)
    , client(toolOptions.pipeName)
{ }

bool Session::connectService()
{
    if (client.open())
        return true;
    streams.complain(client.openFailureText());
    return false;
}

ExitCode Session::waitForFinish()
{
    if (!exitCode)
        loop.exec();
    return exitCode.value_or(ExitCode::Done);
}

void Session::finish(ExitCode code)
{
    if (exitCode)
        return;
    exitCode = code;
    deadline.stop();
    loop.quit();
}

bool Session::isFinished() const
{
    return exitCode.has_value();
}

std::optional<Message> Session::takeAnswer(const QString &tag, const QByteArray &bytes)
{
    std::optional<Message> message = Message::parse(bytes);
    if (!message) {
        if (options.verbose)
            remarkGarbage(bytes);
        return std::nullopt;
    }
    if (message->answers(tag))
        return message;
    deadline.extend();
    if (options.verbose)
        streams.remark(QStringLiteral("meanwhile: ") + message->notificationText());
    return std::nullopt;
}

void Session::print(const QByteArray &line)
{
    if (!streams.printLine(line))
        finish(ExitCode::Done);
}

void Session::print(const QString &line)
{
    print(line.toUtf8());
}

void Session::printAnswer(const Message &message, const CommandEntry *entry)
{
    if (options.json)
        print(message.json());
    else
        print(message.answerText(entry));
}

void Session::remarkGarbage(const QByteArray &bytes)
{
    const QString shown = QString::fromUtf8(bytes.left(mostGarbageShown).toPercentEncoding(" {}[]\":,\\"));
    streams.remark(QStringLiteral("no JSON (%1 bytes): %2").arg(bytes.size()).arg(shown));
}

std::chrono::milliseconds Session::timeoutFor(const CommandEntry *entry) const
{
    return options.timeout.value_or(entry == nullptr ? unknownCommandTimeout : entry->timeout);
}

} // namespace tarnClient
