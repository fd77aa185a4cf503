#include "update_progress.h"

namespace tarnClient {

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

} // namespace

UpdateProgress::UpdateProgress(ToolStreams &toolStreams, bool quiet)
    : streams(toolStreams)
    , isQuiet(quiet)
{ }

void UpdateProgress::begin(std::span<const UpdatePhase> phasesOfStep, milliseconds now)
{
    phases = phasesOfStep;
    stepBegan = now;
    show(now);
}

void UpdateProgress::show(milliseconds now)
{
    const UpdatePhase *phase = phaseAt(now);
    if (isQuiet || phase == nullptr)
        return;
    const QString line = clockText(now) + QLatin1StringView("  ") + phase->text;
    if (streams.errorsAreTerminal) {
        if (line != lineShown)
            write(line);
    } else if (phase != shown) {
        streams.remark(line);
    }
    shown = phase;
}

void UpdateProgress::clear()
{
    if (!lineShown.isEmpty())
        write({});
}

void UpdateProgress::end()
{
    clear();
    phases = {};
}

const UpdatePhase *UpdateProgress::phaseAt(milliseconds now) const
{
    const UpdatePhase *found = nullptr;
    for (const UpdatePhase &phase : phases) {
        if (phase.begins <= now - stepBegan)
            found = &phase;
    }
    return found;
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

} // namespace tarnClient
