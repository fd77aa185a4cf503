#include "person.h"

#include "event_wait.h"

#include <algorithm>
#include <iterator>

namespace tarnctl {

namespace {

struct AnswerWord
{
    QLatin1StringView word;
    Person::Answer answer;
};
constexpr AnswerWord answerWords[] = {
    {QLatin1StringView("y"), Person::Answer::Yes},
    {QLatin1StringView("yes"), Person::Answer::Yes},
    {QLatin1StringView("n"), Person::Answer::No},
    {QLatin1StringView("no"), Person::Answer::No},
    {QLatin1StringView("s"), Person::Answer::Skip},
    {QLatin1StringView("skip"), Person::Answer::Skip},
};

const AnswerWord *wordIn(const QString &line)
{
    const QString word = line.trimmed().toLower();
    const auto *const found = std::find_if(std::begin(answerWords), std::end(answerWords),
        [&word](const AnswerWord &each) { return each.word == word; });
    return found == std::end(answerWords) ? nullptr : found;
}

} // namespace

Person::Person(ToolStreams &toolStreams)
    : streams(toolStreams)
    , reader(streams.input)
{ }

void Person::say(const QString &text)
{
    said << text;
    static_cast<void>(streams.printLine(text));
}

bool Person::waitForEnter(const QString &text)
{
    say(text);
    return nextLine().has_value();
}

Person::Answer Person::ask(const QString &question)
{
    say(question + QStringLiteral(" (y: yes, n: no, s: skip; then Enter)"));
    while (const std::optional<QString> line = nextLine()) {
        if (const AnswerWord *word = wordIn(*line)) {
            said << QStringLiteral("> ") + word->word;
            return word->answer;
        }
        say(QStringLiteral("Please type y, n or s, and press Enter."));
    }
    return Answer::Skip;
}

// A line other than "s" is no reason to stop waiting.
Person::Wait Person::waitFor(const std::function<bool()> &condition, std::chrono::milliseconds longest)
{
    bool isSkipped = false;
    const auto lookForSkip = [this, &isSkipped] {
        while (const std::optional<QString> line = reader.takeLine()) {
            const AnswerWord *word = wordIn(*line);
            isSkipped = word != nullptr && word->answer == Answer::Skip;
            if (isSkipped)
                break;
        }
        return isSkipped;
    };
    const bool hasEnded = tarnctl::waitFor([&] { return condition() || lookForSkip() || isGone(); }, longest);
    if (condition())
        return Wait::Happened;
    if (!hasEnded)
        return Wait::TimedOut;
    return interrupt.isRaised() ? Wait::Interrupted : Wait::Skipped;
}

void Person::announceInterrupt()
{
    QObject::connect(&interrupt, &InterruptPoll::raised, &interrupt, [this] { tellInterrupt(); });
}

void Person::tellInterrupt()
{
    if (!interrupt.isRaised() || hasToldInterrupt)
        return;
    hasToldInterrupt = true;
    say(QStringLiteral("Interrupted: what was changed is put back, please wait."));
}

bool Person::isGone() const
{
    return reader.isExhausted() || interrupt.isRaised();
}

std::optional<QString> Person::nextLine()
{
    waitUntilHolds([this] { return isGone() || reader.nextLine().has_value(); });
    return interrupt.isRaised() ? std::nullopt : reader.takeLine();
}

} // namespace tarnctl
