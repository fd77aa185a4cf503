#include "silence_watch.h"

#include <utility>

namespace tarn {

using std::chrono::milliseconds;

SilenceWatch::SilenceWatch(
    const ClientTimes &clientTimes, std::function<bool()> somebodyListens, QObject *parent)
    : QObject(parent)
    , times(clientTimes)
    , isListened(std::move(somebodyListens))
    , timer(this)
{
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, &SilenceWatch::handleQuietEnd);
}

void SilenceWatch::begin()
{
    if (isListened())
        timer.start(times.quietTime);
    else if (!isOwed)
        timer.stop();
}

void SilenceWatch::stop()
{
    timer.stop();
    isDemanded = isDue = isOwed = false;
}

void SilenceWatch::noteListeners()
{
    if (!timer.isActive())
        begin();
}

void SilenceWatch::noteMessage()
{
    isDue = isOwed = false;
    begin();
}

void SilenceWatch::noteUnanswered()
{
    const milliseconds since(sinceAsked.isValid() ? sinceAsked.elapsed() : times.quietTime.count());
    if (since >= times.quietTime) {
        isDue = true;
        return;
    }
    isOwed = true;
    timer.start(times.quietTime - since);
}

void SilenceWatch::demand()
{
    isDemanded = true;
}

bool SilenceWatch::takeDue()
{
    const bool isTaken = isDue || isDemanded;
    isDue = isDemanded = false;
    if (isTaken)
        sinceAsked.start();
    return isTaken;
}

void SilenceWatch::handleQuietEnd()
{
    if (!std::exchange(isOwed, false) && !isListened())
        return;
    isDue = true;
    emit due();
}

} // namespace tarn
