#include "simulator/replay/replay_progress.h"

#include "simulator/shared_text.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

bool ReplayProgress::hasEnded() const
{
    const ReplayState &replay = state.replay;
    return replay.differs.load() != 0 || replay.consumed.load() == replay.total.load();
}

void ReplayProgress::noteDifference(const std::string &text)
{
    if (state.replay.differs.load() != 0)
        return;
    storeText(state.replay.difference, printable(text));
    state.replay.differs.store(1);
}

void ReplayProgress::doSteps(std::uint64_t accesses)
{
    if (!steps.doUntil(accesses))
        noteDifference("this could not be done: " + steps.failedStep());
}

} // namespace tarnSimulator
