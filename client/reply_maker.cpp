#include "reply_maker.h"

#include "command_catalogue.h"
#include "request.h"

namespace tarn {

namespace {

constexpr QLatin1StringView failedWord("failed");

QString textIn(const QJsonObject &answer, QLatin1StringView key)
{
    return answer.value(key).toVariant().toString();
}

// The key that holds the answer; empty: none does. A command that sends its request back answers in no key,
// although its own "data" is in there.
QLatin1StringView valueKey(const CommandEntry *entry, const QJsonObject &answer)
{
    if (entry == nullptr)
        return answer.contains(resultKey) ? resultKey : dataKey;
    const auto isPlain = [](QLatin1StringView key) {
        return key == dataKey || key == resultKey;
    };
    const auto found = std::find_if(entry->answerKeys.cbegin(), entry->answerKeys.cend(), isPlain);
    return found == entry->answerKeys.cend() ? QLatin1StringView() : *found;
}

} // namespace

QJsonObject withoutMark(QJsonObject message)
{
    message.remove(tagKey);
    return message;
}

ReplyMaker::ReplyMaker(const QString &command)
{
    reply.commandName = command;
}

ReplyMaker &ReplyMaker::sent(std::chrono::milliseconds waited)
{
    reply.sent = true;
    reply.waitingTime = waited;
    return *this;
}

Reply ReplyMaker::answered(const QJsonObject &answer)
{
    const CommandEntry *entry = findCommand(reply.commandName);
    const QLatin1StringView outcomeKey = entry == nullptr ? resultKey : entry->outcomeKey;
    const bool isFailure = !outcomeKey.isEmpty() && textIn(answer, outcomeKey) == failedWord;
    reply.ending = isFailure ? Outcome::Failed : Outcome::Answered;
    if (isFailure)
        reply.reasonText = QStringLiteral("The service answered \"failed\" to %1.").arg(reply.commandName);
    const QLatin1StringView key = valueKey(entry, answer);
    reply.answeredValue = key.isEmpty() ? QString() : textIn(answer, key);
    reply.wholeAnswer = withoutMark(answer);
    return reply;
}

Reply ReplyMaker::ended(Outcome outcome, const QString &reason)
{
    reply.ending = outcome;
    reply.reasonText = reason;
    return reply;
}

} // namespace tarn
