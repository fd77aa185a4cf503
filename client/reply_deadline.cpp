#include "reply_deadline.h"

namespace tarn {

namespace {

using std::chrono::milliseconds;

// The service's 500 ms between two messages and a margin for a busy computer.
constexpr milliseconds messagePeriod(600);
// A timer that comes this much too late shows that the thread was busy.
constexpr milliseconds delayOfABusyThread(100);

} // namespace

ReplyDeadline::ReplyDeadline(QObject *parent)
    : QObject(parent)
    , timer(this)
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &ReplyDeadline::handleTimeout);
}

void ReplyDeadline::start(milliseconds timeout)
{
    limit = timeout;
    run(timeout);
}

void ReplyDeadline::stop()
{
    timer.stop();
}

void ReplyDeadline::extend()
{
    if (timer.isActive())
        run(milliseconds(due.remainingTime()) + messagePeriod);
}

void ReplyDeadline::run(milliseconds time)
{
    due = QDeadlineTimer(time);
    timer.start(time);
}

void ReplyDeadline::handleTimeout()
{
    const milliseconds delay(QDeadlineTimer::current().deadline() - due.deadline());
    if (delay > delayOfABusyThread)
        run(delayOfABusyThread);
    else
        emit expired();
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

} // namespace tarn
