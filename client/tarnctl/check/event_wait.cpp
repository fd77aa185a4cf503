#include "event_wait.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace tarnctl {

namespace {

// Too short to be noticed by a person, and by far shorter than an answer takes.
constexpr std::chrono::milliseconds lookPeriod(20);

bool wait(const std::function<bool()> &condition, QDeadlineTimer limit)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition() || limit.hasExpired())
            loop.quit();
    });
    look.start(lookPeriod);
    while (!condition() && !limit.hasExpired())
        loop.exec();
    return condition();
}

} // namespace

bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds longest)
{
    return wait(condition, QDeadlineTimer(longest));
}

void waitUntilHolds(const std::function<bool()> &condition)
{
    static_cast<void>(wait(condition, QDeadlineTimer(QDeadlineTimer::Forever)));
}

} // namespace tarnctl
