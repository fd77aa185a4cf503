#include "check_step.h"

#include <QString>

#include <algorithm>
#include <iterator>

namespace tarnctl {

namespace {

using L = QLatin1StringView;

// What a command answers where it takes another word for the same.
struct PutBackWord
{
    L command;
    L answer;
    L word;
};
constexpr PutBackWord putBackWords[] = {
    {L("powerModeControl"), L("0"), L("high")},
    {L("powerModeControl"), L("1"), L("balance")},
    {L("powerModeControl"), L("2"), L("low")},
};

} // namespace

QList<CheckStep> checkSteps()
{
    return readingSteps() + changingSteps() + handsSteps();
}

QString wordToPutBack(QLatin1StringView command, const QString &remembered)
{
    const auto *const row = std::find_if(
        std::begin(putBackWords), std::end(putBackWords), [command, &remembered](const PutBackWord &each) {
            return each.command == command && each.answer == remembered;
        });
    return row == std::end(putBackWords) ? remembered : row->word.toString();
}

} // namespace tarnctl
