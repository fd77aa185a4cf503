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

UpdateProgress::UpdateProgress(ToolStreams &streams, bool isQuiet)
    : m_streams(streams)
    , m_isQuiet(isQuiet)
{ }

void UpdateProgress::begin(std::span<const UpdatePhase> phases, milliseconds now)
{
    m_phases = phases;
    m_stepBegan = now;
    show(now);
}

void UpdateProgress::show(milliseconds now)
{
    const UpdatePhase *phase = phaseAt(now);
    if (m_isQuiet || phase == nullptr)
        return;
    const QString line = clockText(now) + QLatin1StringView("  ") + phase->text;
    if (m_streams.errorsAreTerminal) {
        if (line != m_line)
            write(line);
    } else if (phase != m_shown) {
        m_streams.remark(line);
    }
    m_shown = phase;
}

void UpdateProgress::clear()
{
    if (!m_line.isEmpty())
        write({});
}

void UpdateProgress::end()
{
    clear();
    m_phases = {};
}

const UpdatePhase *UpdateProgress::phaseAt(milliseconds now) const
{
    const UpdatePhase *found = nullptr;
    for (const UpdatePhase &phase : m_phases) {
        if (phase.begins <= now - m_stepBegan)
            found = &phase;
    }
    return found;
}

// Blanks instead of an escape sequence that erases: older Windows consoles show such a sequence as it is.
void UpdateProgress::write(const QString &line)
{
    const QString padded = line.leftJustified(m_line.size());
    m_streams.errors << '\r' << padded.toStdString();
    if (line.isEmpty())
        m_streams.errors << '\r';
    m_streams.errors.flush();
    m_line = line;
}

} // namespace tarnClient
