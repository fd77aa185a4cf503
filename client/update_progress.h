#pragma once

#include "tool_streams.h"
#include "update_plan.h"

namespace tarnClient {

// Shows a person where an update stands, on the error output: on a terminal one line that is written over,
// elsewhere a line for each phase. Times count from the start of the update.
class UpdateProgress
{
public:
    UpdateProgress(ToolStreams &streams, bool isQuiet);

    // A step begins. The phases have to outlive it.
    void begin(std::span<const UpdatePhase> phasesOfStep, std::chrono::milliseconds now);
    // Writes only when there is something new to see, so that it may be called often.
    void show(std::chrono::milliseconds now);
    // Takes the line away, so that something else can be written; the next show() brings it back.
    void clear();
    // Nothing is shown any more.
    void end();

private:
    [[nodiscard]] const UpdatePhase *phaseAt(std::chrono::milliseconds now) const;
    void write(const QString &text);

    ToolStreams &streams;
    bool isQuiet;
    std::span<const UpdatePhase> phases;
    std::chrono::milliseconds stepBegan {0};
    const UpdatePhase *shown = nullptr;
    // What stands on the terminal.
    QString lineShown;
};

} // namespace tarnClient
