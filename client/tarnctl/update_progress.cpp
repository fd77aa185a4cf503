#include "update_progress.h"

namespace tarnctl {

namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

// "0:07" or "12:34".
QString clockText(milliseconds time)
{
    const auto wholeMinutes = std::chrono::duration_cast<minutes>(time);
    const auto rest = std::chrono::duration_cast<seconds>(time - wholeMinutes);
    return QStringLiteral("%1:%2").arg(wholeMinutes.count()).arg(rest.count(), 2, 10, QLatin1Char('0'));
}

QString lineOf(const QString &phase, milliseconds time)
{
    return clockText(time) + QLatin1StringView("  ") + phase;
}

} // namespace

UpdateProgress::UpdateProgress(ToolStreams &toolStreams, bool quiet)
    : streams(toolStreams)
    , isQuiet(quiet)
{ }

void UpdateProgress::begin(const QString &phaseText, milliseconds now)
{
    phase = phaseText;
    if (streams.errorsAreTerminal)
        show(now);
    else if (!isQuiet)
        streams.remark(lineOf(phase, now));
}

void UpdateProgress::show(milliseconds now)
{
    if (isQuiet || phase.isEmpty() || !streams.errorsAreTerminal)
        return;
    const QString line = lineOf(phase, now);
    if (line != lineShown)
        write(line);
}

void UpdateProgress::clear()
{
    if (!lineShown.isEmpty())
        write({});
}

void UpdateProgress::end()
{
    clear();
    phase.clear();
}

// Erases with blanks and not with an escape sequence, which older Windows consoles would print.
void UpdateProgress::write(const QString &text)
{
    const QString padded = text.leftJustified(lineShown.size());
    streams.errors << '\r' << padded.toStdString();
    if (text.isEmpty())
        streams.errors << '\r';
    streams.errors.flush();
    lineShown = text;
}

} // namespace tarnctl
