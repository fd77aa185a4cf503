#include "reply_deadline.h"

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

// The service's 500 ms between two messages and a margin for a busy computer.
constexpr milliseconds messagePeriod(600);

} // namespace

ReplyDeadline::ReplyDeadline(QObject *parent)
    : QObject(parent)
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &ReplyDeadline::expired);
}

void ReplyDeadline::start(milliseconds timeout)
{
    limit = timeout;
    timer.start(timeout);
}

void ReplyDeadline::stop()
{
    timer.stop();
}

void ReplyDeadline::extend()
{
    if (timer.isActive())
        timer.start(timer.remainingTimeAsDuration() + messagePeriod);
}

bool ReplyDeadline::isRunning() const
{
    return timer.isActive();
}

milliseconds ReplyDeadline::timeout() const
{
    return limit;
}

QString durationText(milliseconds duration)
{
    const auto wholeMinutes = std::chrono::duration_cast<std::chrono::minutes>(duration);
    const bool readsBetterInMinutes = wholeMinutes == duration && wholeMinutes > std::chrono::minutes(1);
    if (readsBetterInMinutes)
        return QString::number(wholeMinutes.count()) + QStringLiteral(" min");
    return QString::number(std::chrono::duration<double>(duration).count()) + QStringLiteral(" s");
}

} // namespace tarnClient
