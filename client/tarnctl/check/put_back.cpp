#include "event_wait.h"
#include "item_text.h"
#include "step_run.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

#include <utility>

// The part of a step's run that remembers what was there before, and puts it back.

namespace tarnctl {

namespace {

using tarn::Outcome;
using Kind = CheckItem::Kind;

// Whether the service has taken it; a command without an answer has been sent.
bool isTaken(const CheckItem &item, const Exchange &exchange)
{
    const bool hasCome = exchange.reply.isAnswered() || exchange.reply.outcome() == Outcome::Sent;
    return hasCome && matches(item.expected, exchange.text);
}

} // namespace

CheckVerdict StepRun::remember(const CheckItem &item)
{
    CheckVerdict verdict = CheckVerdict::Skipped;
    if (item.kind == Kind::RememberSettled) {
        person.say(requestLine(item.command.toString(), {}));
        last = settledAnswer(item);
        verdict = judge(item, last, last.reply.waited());
    } else {
        verdict = ask(item, item.data.toString());
    }
    if (last.reply.isAnswered() && matches(item.expected, last.text))
        remembered = last.text;
    isCutShort = remembered.isEmpty();
    return verdict;
}

Exchange StepRun::settledAnswer(const CheckItem &item)
{
    const QString command = item.command.toString();
    const QDeadlineTimer limit(times.settling);
    Exchange before = talk.ask(command);
    while (before.reply.isAnswered()) {
        static_cast<void>(waitFor([this] { return person.hasInterrupted(); }, times.settled));
        Exchange now = talk.ask(command);
        if (!now.reply.isAnswered() || now.text == before.text || limit.hasExpired() || mustEnd())
            return now;
        before = std::move(now);
    }
    return before;
}

// Without anything remembered, nothing has been changed that could be put back.
CheckVerdict StepRun::putBack(const CheckItem &item)
{
    const QString data = item.data.isEmpty() ? wordToPutBack(item.command, remembered) : item.data.toString();
    if (data.isEmpty())
        return CheckVerdict::Skipped;
    person.tellInterrupt();
    CheckVerdict verdict = isLost ? CheckVerdict::NoAnswer : ask(item, data);
    bool isBack = verdict != CheckVerdict::NoAnswer && isTaken(item, last);
    if (verdict != CheckVerdict::NoAnswer && !item.readBack.isEmpty() && !isReadBack(item)) {
        isBack = false;
        verdict =
            worse(verdict, last.reply.isAnswered() ? CheckVerdict::NotAsExpected : CheckVerdict::NoAnswer);
    }
    if (!isBack)
        person.say(QStringLiteral("  This could not be put back. Do it later: tarnctl %1 %2")
                       .arg(item.command.toString(), data));
    if (!item.afterwards.isEmpty())
        person.say(item.afterwards.toString());
    return verdict;
}

// The service announces some values only after a while, also when the check has been interrupted.
bool StepRun::isReadBack(const CheckItem &item)
{
    const QString command = item.readBack.toString();
    const QString data = item.readBackData.toString();
    person.say(requestLine(command, data));
    last = matchingAnswer(command, data, [this](const QString &text) { return text == remembered; });
    const QString escaped = QRegularExpression::escape(remembered);
    const QByteArray expected = escaped.toLatin1();
    const QByteArray wanted = remembered.toLatin1();
    const CheckItem readBack {Kind::Repeat, item.readBack, item.readBackData, QLatin1StringView(expected),
        QLatin1StringView(wanted)};
    const CheckVerdict verdict = judge(readBack, last, last.reply.waited());
    return verdict != CheckVerdict::NoAnswer && last.reply.isAnswered() && last.text == remembered;
}

} // namespace tarnctl
