#pragma once

#include "tool_streams.h"
#include "update_plan.h"

namespace tarnClient {

// Shows the progress of an update on the error output: on a terminal one line that is overwritten, elsewhere
// a line for each phase. Times count from the start of the update.
class UpdateProgress
{
public:
    UpdateProgress(ToolStreams &streams, bool isQuiet);

    // A step begins. The phases must exist until it ends.
    void begin(std::span<const UpdatePhase> phasesOfStep, std::chrono::milliseconds now);
    // Writes only when the text has changed, so it may be called often.
    void show(std::chrono::milliseconds now);
    // Erases the line, so that something else can be written; the next show() writes it again.
    void clear();
    // Erases the line; nothing is shown any more.
    void end();

private:
    [[nodiscard]] const UpdatePhase *phaseAt(std::chrono::milliseconds now) const;
    void write(const QString &text);

    ToolStreams &streams;
    bool isQuiet;
    std::span<const UpdatePhase> phases;
    std::chrono::milliseconds stepBegan {0};
    const UpdatePhase *shown = nullptr;
    // The line on the terminal now.
    QString lineShown;
};

} // namespace tarnClient
