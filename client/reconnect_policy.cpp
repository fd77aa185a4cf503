#include "reconnect_policy.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

constexpr int mostSilences = 3;

} // namespace

ReconnectPolicy::ReconnectPolicy(const ClientTimes &clientTimes)
    : times(clientTimes)
    , nextRetry(clientTimes.firstRetry)
{ }

void ReconnectPolicy::forget()
{
    nextRetry = times.firstRetry;
    silences = 0;
    takenOver = false;
}

// The silences stay counted: two clients that take the service from each other get answers in between.
void ReconnectPolicy::noteAnswer()
{
    nextRetry = times.firstRetry;
    takenOver = false;
}

ReconnectPolicy::Milliseconds ReconnectPolicy::pauseAfterFailure()
{
    takenOver = false;
    return std::exchange(nextRetry, std::min(nextRetry + nextRetry / 2, times.longestRetry));
}

ReconnectPolicy::Milliseconds ReconnectPolicy::pauseAfterSilence(Milliseconds now)
{
    if (now - lastSilence > times.lossMemory)
        silences = 0;
    lastSilence = now;
    takenOver = ++silences >= mostSilences;
    return takenOver ? times.takenOverPause : times.leavePause;
}

bool ReconnectPolicy::isTakenOver() const
{
    return takenOver;
}

} // namespace tarn
