#include "watch_text.h"

#include "no_answer_text.h"
#include "typed_line.h"

namespace tarnctl {

namespace {

using tarn::Outcome;

// As it may be typed.
QString lineOf(const TypedCommand &command)
{
    return command.data ? command.name + u' ' + *command.data : command.name;
}

// After the command has been written.
QString goneText(const TypedCommand &command)
{
    const QString text = isNeverAnswered(command)
        ? QStringLiteral("The service went away just after %1 was sent")
        : QStringLiteral("The service went away before it answered %1");
    return text.arg(command.name);
}

QString unansweredText(const tarn::Reply &reply, bool isStillConnected)
{
    QString text = noAnswerText(reply.command(), reply.reason());
    // When the service has fallen silent, the client connects again by itself.
    if (!isStillConnected)
        return text;
    return text + QStringLiteral("\nIf another client has come and gone, type reconnect.");
}

} // namespace

bool isNeverAnswered(const TypedCommand &command)
{
    return tarn::isNeverAnswered(command.name, command.data.value_or(QString()));
}

QString lastGoneText(const std::optional<TypedCommand> &pending, bool isWritten)
{
    const bool isSent = pending && isWritten;
    QString text = (isSent ? goneText(*pending) : QStringLiteral("The service went away")) + u'.';
    if (pending && !isSent)
        text += u'\n' + unsentText({lineOf(*pending)}).value_or(QString());
    return text
        + QStringLiteral("\nStart it again (./run, or the service \"Tarn Service\" on Windows); --reconnect "
                         "waits for it.");
}

QString reconnectText(const std::optional<TypedCommand> &pending, bool isWritten, bool isConnected)
{
    if (!pending)
        return QStringLiteral("Connecting again.");
    if (isWritten) {
        return QStringLiteral("Connecting again; if %1 is still answered, it shows as a late answer.")
            .arg(pending->name);
    }
    return (isConnected ? QStringLiteral("Connecting again, then sending %1.")
                        : QStringLiteral("Connecting again; %1 has not been sent."))
        .arg(pending->name);
}

std::optional<QString> unfinishedText(
    const std::optional<TypedCommand> &pending, bool isWritten, QStringList lines)
{
    QStringList left;
    if (pending && !isWritten)
        lines.prepend(lineOf(*pending));
    else if (pending && !isNeverAnswered(*pending))
        left << QStringLiteral("No answer to %1 has come yet.").arg(pending->name);
    if (const std::optional<QString> unsent = unsentText(lines))
        left << *unsent;
    if (left.isEmpty())
        return std::nullopt;
    return left.join(u'\n');
}

QString complaintText(const tarn::Reply &reply, const TypedCommand &command, bool isStillConnected)
{
    if (reply.outcome() == Outcome::NoAnswer)
        return unansweredText(reply, isStillConnected);
    if (reply.outcome() == Outcome::Refused)
        return reply.reason();
    if (reply.wasSent())
        return goneText(command) + QStringLiteral("; waiting for it to come back.");
    return QStringLiteral("%1 was not sent. %2").arg(reply.command(), reply.reason());
}

} // namespace tarnctl
