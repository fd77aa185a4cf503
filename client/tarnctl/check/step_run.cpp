#include "step_run.h"

#include "item_text.h"

#include <QDeadlineTimer>

namespace tarnctl {

namespace {

using std::chrono::milliseconds;
using tarn::Outcome;
using Kind = CheckItem::Kind;

// Each takes half a minute, and a stuck EC does not come back by itself.
constexpr int mostUnanswered = 2;

// What the window of the service ends with, which asks whether the graphics box may be removed.
const std::string yesCode = "1";
const std::string noCode = "0";

const QString graphicsEnd = QStringLiteral("disengagedGraphics");

} // namespace

StepRun::StepRun(Person &asked, ServiceTalk &conversation, LogWatch &logWatch, DeviceNotes &deviceNotes,
    tarnRecording::RequestJournal &requestJournal, const CheckTimes &checkTimes)
    : person(asked)
    , talk(conversation)
    , log(logWatch)
    , devices(deviceNotes)
    , journal(requestJournal)
    , times(checkTimes)
{ }

CheckVerdict StepRun::run(const CheckStep &step)
{
    if (!isApplicable(step)) {
        const bool isAny = step.accessory == anyAccessory;
        person.say(isAny ? QStringLiteral("  nothing is attached, so this is left out")
                         : QStringLiteral("  this needs the accessory %1, so it is left out")
                               .arg(step.accessory.toString()));
        return CheckVerdict::Skipped;
    }
    remembered.clear();
    isCutShort = false;
    hasAsked = false;
    CheckVerdict verdict = CheckVerdict::Skipped;
    for (const CheckItem &item : step.items) {
        const bool mayRun = item.kind == Kind::PutBack ? hasAsked : !isCutShort && !mustEnd();
        if (mayRun)
            verdict = worse(verdict, run(item));
    }
    if (step.part == CheckPart::Hands && !isLost)
        noteDevices();
    return verdict;
}

bool StepRun::isApplicable(const CheckStep &step) const
{
    if (step.accessory.isEmpty())
        return true;
    const QString attached = talk.accessory();
    if (step.accessory == anyAccessory)
        return !attached.isEmpty() && attached != noAccessory;
    return attached == step.accessory;
}

CheckVerdict StepRun::run(const CheckItem &item)
{
    switch (item.kind) {
    case Kind::Ask:
        return ask(item, item.data.toString());
    case Kind::Remember:
    case Kind::RememberSettled:
        return remember(item);
    case Kind::Repeat:
        return repeat(item);
    case Kind::Await:
        return await(item);
    case Kind::Look:
        return look(item);
    case Kind::PutBack:
        return putBack(item);
    case Kind::Tell:
        person.say(item.text.toString());
        break;
    case Kind::FreeConnector:
        return freeConnector();
    case Kind::ReleasedBox:
        isCutShort = !talk.isBoxReleased();
        if (isCutShort)
            person.say(QStringLiteral("  ") + item.text.toString());
        break;
    }
    return CheckVerdict::Skipped;
}

QString StepRun::findAccessory()
{
    static_cast<void>(talk.isAnswered()); // without an answer the next step says so
    return talk.accessory();
}

CheckVerdict StepRun::ask(const CheckItem &item, const QString &data)
{
    person.say(requestLine(item.command.toString(), data));
    hasAsked = true;
    last = talk.ask(item.command.toString(), data);
    return judge(item, last, last.reply.waited());
}

// The service answers from memory here, so each answer comes in time.
CheckVerdict StepRun::repeat(const CheckItem &item)
{
    person.say(requestLine(item.command.toString(), {}));
    last = matchingAnswer(item.command.toString(), {},
        [this, &item](const QString &text) { return mustEnd() || matches(item.expected, text); });
    return judge(item, last, last.reply.waited());
}

Exchange StepRun::matchingAnswer(
    const QString &command, const QString &data, const std::function<bool(const QString &)> &isWanted)
{
    const QDeadlineTimer limit(times.settling);
    Exchange exchange;
    do
        exchange = talk.ask(command, data);
    while (exchange.reply.isAnswered() && !isWanted(exchange.text) && !limit.hasExpired());
    return exchange;
}

// A box is never pulled for this: its card is in use.
CheckVerdict StepRun::freeConnector()
{
    const QString attached = talk.accessory();
    if (attached == noAccessory)
        return CheckVerdict::Skipped;
    if (attached == QLatin1StringView("dock") || attached == QLatin1StringView("k_vane")) {
        return await({Kind::Await, QLatin1StringView("changeAccessoryType"), QLatin1StringView(), noAccessory,
            attached == QLatin1StringView("dock") ? QLatin1StringView("Take the dock off first.")
                                                  : QLatin1StringView("Take the KVane off first.")});
    }
    person.say(attached == graphicsAccessory
            ? QStringLiteral(
                "  The graphics box stays attached, and there is one connector, so this is left out.")
            : QStringLiteral("  It is not known what is attached, so this is left out."));
    isCutShort = true;
    return CheckVerdict::Skipped;
}

CheckVerdict StepRun::judge(const CheckItem &item, const Exchange &exchange, milliseconds took)
{
    const QString wanted = item.text.toString();
    person.say(QStringLiteral("    expected: ") + wanted);
    if (!exchange.reply.isAnswered() && exchange.reply.outcome() != Outcome::Failed
        && exchange.reply.outcome() != Outcome::Sent)
        return afterNoAnswer(exchange);
    unansweredInARow = 0;
    const QString shown = exchange.text.isEmpty() ? QStringLiteral("an empty answer") : exchange.text;
    person.say(QStringLiteral("    came:     %1, after %2").arg(shown, secondsText(took)));
    CheckVerdict verdict =
        matches(item.expected, exchange.text) ? CheckVerdict::AsExpected : CheckVerdict::NotAsExpected;
    if (verdict != CheckVerdict::AsExpected)
        person.say(QStringLiteral("    This is not what was expected."));
    const milliseconds usual = item.lateAfter > milliseconds(0) ? item.lateAfter : times.late;
    const milliseconds most = usual + exchange.messagesBefore * times.latePerMessage;
    if (exchange.reply.outcome() != Outcome::Sent && took > most) {
        person.say(
            QStringLiteral("    This is late: it takes less than %1 as a rule.").arg(secondsText(most)));
        verdict = CheckVerdict::NotAsExpected;
    }
    return worse(verdict, quoteLog());
}

CheckVerdict StepRun::afterNoAnswer(const Exchange &exchange)
{
    person.say(QStringLiteral("    came:     no answer. ") + exchange.text);
    static_cast<void>(quoteLog());
    const bool isGone = exchange.reply.outcome() == Outcome::ServiceGone;
    if (isGone || !talk.isAnswered()) {
        isLost = true;
        hasEnded = true;
        person.say(isGone
                ? QStringLiteral("The service has gone, so the check ends here.")
                : QStringLiteral("The service does not talk to tarnctl any more, as when another client "
                                 "has come and gone,\nor it hangs. Close the application and other "
                                 "uses of tarnctl, and begin again. The check ends here."));
    } else if (++unansweredInARow >= mostUnanswered) {
        hasEnded = true;
        person.say(QStringLiteral("The EC does not answer, so the check ends here."));
    }
    return CheckVerdict::NoAnswer;
}

CheckVerdict StepRun::await(const CheckItem &item)
{
    const bool isKey = item.command == graphicsEnd;
    talk.forgetNotifications();
    person.say(QStringLiteral("  ") + item.text.toString()
        + QStringLiteral(" (s and Enter: skip; %1 at most)").arg(secondsText(times.hands)));
    const auto asked = std::chrono::steady_clock::now();
    QString came;
    qsizetype seen = 0;
    const auto hasCome = [&] {
        while (seen < talk.notifications().size()) {
            const tarn::Notification &each = talk.notifications().at(seen++);
            if (each.name != item.command)
                continue;
            came = each.data;
            if (matches(item.expected, came))
                return true;
            person.say(QStringLiteral("    came:     %1 %2").arg(each.name, came));
        }
        return false;
    };
    const Person::Wait wait =
        person.waitFor([&, isDone = false]() mutable { return isDone = isDone || hasCome(); }, times.hands);
    const bool hasHappened = wait == Person::Wait::Happened;
    const auto took = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - asked);
    if (isKey && (hasHappened || wait == Person::Wait::TimedOut))
        noteWindowAnswer(asked, hasHappened);
    isCutShort = !hasHappened;
    if (wait == Person::Wait::Skipped || wait == Person::Wait::Interrupted)
        return CheckVerdict::Skipped;
    const QString expected = (item.command + u' ' + item.expected.toString()).trimmed();
    person.say(QStringLiteral("    expected: ") + expected);
    if (!hasHappened) {
        person.say(QStringLiteral("    came:     nothing"));
        if (!talk.isAnswered()) {
            isLost = true;
            hasEnded = true;
            person.say(QStringLiteral("The service does not talk to tarnctl any more. The check ends here."));
        }
        return CheckVerdict::NoAnswer;
    }
    person.say(QStringLiteral("    came:     %1, after %2").arg(expected, secondsText(took)));
    return worse(CheckVerdict::AsExpected, quoteLog());
}

CheckVerdict StepRun::look(const CheckItem &item)
{
    switch (person.ask(QStringLiteral("  ") + item.text.toString())) {
    case Person::Answer::Yes:
        return CheckVerdict::AsExpected;
    case Person::Answer::No:
        person.say(QStringLiteral("    This is not what was expected."));
        return CheckVerdict::NotAsExpected;
    case Person::Answer::Skip:
        break;
    }
    return CheckVerdict::Skipped;
}

CheckVerdict StepRun::quoteLog()
{
    const QStringList lines = log.newTellingLines();
    for (const QString &line : lines)
        person.say(QStringLiteral("    log:      ") + line);
    return lines.isEmpty() ? CheckVerdict::Skipped : CheckVerdict::NotAsExpected;
}

void StepRun::noteDevices()
{
    for (const QString &line : devices.noteChanges())
        person.say(line);
}

// At the time of the question, because the service acts on the answer before it tells of it. Nothing else has
// been noted meanwhile.
void StepRun::noteWindowAnswer(std::chrono::steady_clock::time_point asked, bool isYes)
{
    const auto us = std::chrono::duration_cast<std::chrono::microseconds>(asked.time_since_epoch()).count();
    journal.note(
        tarnRecording::RequestRecord::Kind::Answer, isYes ? yesCode : noCode, static_cast<std::uint64_t>(us));
}

} // namespace tarnctl
