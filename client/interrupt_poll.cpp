#include "interrupt_poll.h"

#include <chrono>

namespace tarnClient {

namespace {

constexpr std::chrono::milliseconds lookPeriod(50);

} // namespace

InterruptPoll::InterruptPoll(QObject *parent)
    : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &InterruptPoll::look);
    m_timer.start(lookPeriod);
}

bool InterruptPoll::isRaised() const
{
    return m_flag.isRaised();
}

void InterruptPoll::look()
{
    if (m_flag.isRaised()) {
        m_timer.stop();
        emit raised();
    }
}

} // namespace tarnClient
