#include "waiting_requests.h"

#include "reply_maker.h"

namespace tarn {

WaitingRequests::WaitingRequests(QObject *parent)
    : QObject(parent)
    , expiryTimer(this)
{
    expiryTimer.setSingleShot(true);
    connect(&expiryTimer, &QTimer::timeout, this, &WaitingRequests::dropExpired);
}

void WaitingRequests::add(Request request)
{
    const Request refused = queue.add(std::move(request));
    if (!refused) {
        QMetaObject::invokeMethod(this, &WaitingRequests::takeNew, Qt::QueuedConnection);
        return;
    }
    const QString reason = isShut ? QStringLiteral("The client is not open.")
                                  : QStringLiteral("Too many requests wait: %1.").arg(RequestQueue::longest);
    finish(refused, ReplyMaker(refused->command).ended(Outcome::Refused, reason));
}

WaitingRequests::Request WaitingRequests::takeNext()
{
    return queue.takeNext();
}

void WaitingRequests::waitForConnection(std::chrono::milliseconds time)
{
    queue.beginWaiting(time);
    scheduleExpiry();
}

void WaitingRequests::noteConnection()
{
    queue.endWaiting();
    expiryTimer.stop();
}

std::vector<WaitingRequests::Request> WaitingRequests::takeAll()
{
    expiryTimer.stop();
    return queue.takeAll();
}

std::vector<WaitingRequests::Request> WaitingRequests::shut()
{
    expiryTimer.stop();
    isShut = true;
    return queue.shut();
}

void WaitingRequests::open()
{
    isShut = false;
    queue.open();
}

void WaitingRequests::takeNew()
{
    queue.watchNew(
        [this] { QMetaObject::invokeMethod(this, &WaitingRequests::dropCanceled, Qt::QueuedConnection); });
    emit arrived();
}

void WaitingRequests::dropCanceled()
{
    for (const Request &request : queue.takeCanceled())
        finish(request, Reply());
}

void WaitingRequests::dropExpired()
{
    const std::vector<Request> expired = queue.takeExpired();
    scheduleExpiry();
    finishWithoutConnection(expired);
}

void WaitingRequests::scheduleExpiry()
{
    const std::optional<std::chrono::milliseconds> next = queue.nextExpiry();
    if (next)
        expiryTimer.start(*next);
    else
        expiryTimer.stop();
}

void finish(const RequestQueue::Request &request, const Reply &reply)
{
    request->promise->finish(reply);
}

void finishAll(const std::vector<RequestQueue::Request> &requests, Outcome outcome, const QString &reason)
{
    for (const RequestQueue::Request &request : requests)
        finish(request, ReplyMaker(request->command).ended(outcome, reason));
}

void finishWithoutConnection(const std::vector<RequestQueue::Request> &requests)
{
    finishAll(requests, Outcome::ServiceGone, QStringLiteral("There is no connection to the service."));
}

} // namespace tarn
