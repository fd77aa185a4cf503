#pragma once

#include "tool_streams.h"

#include <chrono>

namespace tarnctl {

// Shows the progress of an update on the error output: on a terminal one line that is overwritten, elsewhere
// a line for each phase. Times count from the start of the update.
class UpdateProgress
{
public:
    UpdateProgress(ToolStreams &streams, bool isQuiet);

    void begin(const QString &phaseText, std::chrono::milliseconds now);
    // Writes only when the text has changed, so it may be called often.
    void show(std::chrono::milliseconds now);
    // Erases the line, so that something else can be written; the next show() writes it again.
    void clear();
    // Erases the line; nothing is shown any more.
    void end();

private:
    void write(const QString &text);

    ToolStreams &streams;
    bool isQuiet;
    // Empty: no phase has begun.
    QString phase;
    // The line on the terminal now.
    QString lineShown;
};

} // namespace tarnctl
