#include "log_watch.h"

#include "client/tarnctl/diagnose/log_reader.h"

#include <algorithm>
#include <iterator>

namespace tarnctl {

namespace {

using L = QLatin1StringView;

// Lines of the level "debug" that tell of a fault when they come so often while one request is carried out.
struct TellingText
{
    L text;
    int times;
};
constexpr TellingText tellingTexts[] = {
    // The EC has not answered for 5 s.
    {L("ec reader not normal, begin to reload dll."), 1},
    // As often as the service looks whether the EC has finished: it never has.
    {L("read ecRGBCmdDataDock from xdata until it is 0."), 20},
    {L("read ecRGBCmdData from xdata until it is 0."), 10},
};

} // namespace

LogWatch::LogWatch(const QString &logFolder)
    : folder(logFolder)
{
    static_cast<void>(newLines());
}

QStringList LogWatch::newTellingLines()
{
    QStringList telling;
    int counts[std::size(tellingTexts)] = {};
    for (const QString &line : newLines()) {
        const auto entry = logEntry(line);
        if (!entry)
            continue;
        if (entry->level != QStringLiteral("debug") && entry->level != QStringLiteral("info"))
            telling << line;
        for (std::size_t row = 0; row < std::size(tellingTexts); ++row) {
            if (entry->text.trimmed() == tellingTexts[row].text && ++counts[row] == tellingTexts[row].times)
                telling << line + QStringLiteral(" (%1 times)").arg(counts[row]);
        }
    }
    return telling;
}

// When the last line is not there any more, all that are there came after it.
QStringList LogWatch::newLines()
{
    const QStringList lines = LogReader(folder).lines();
    QStringList fresh = last.isEmpty() ? lines : lines.mid(lines.lastIndexOf(last) + 1);
    if (!lines.isEmpty())
        last = lines.last();
    return fresh;
}

} // namespace tarnctl
