#include "interrupt_poll.h"

#include <chrono>

namespace tarnctl {

namespace {

constexpr std::chrono::milliseconds lookPeriod(50);

} // namespace

InterruptPoll::InterruptPoll(QObject *parent)
    : QObject(parent)
{
    connect(&timer, &QTimer::timeout, this, &InterruptPoll::look);
    timer.start(lookPeriod);
}

bool InterruptPoll::isRaised() const
{
    return flag.isRaised();
}

void InterruptPoll::look()
{
    if (flag.isRaised()) {
        timer.stop();
        emit raised();
    }
}

} // namespace tarnctl
