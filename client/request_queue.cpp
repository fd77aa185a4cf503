#include "request_queue.h"

#include <QMutexLocker>

#include <algorithm>
#include <utility>

namespace tarn {

using std::chrono::milliseconds;

RequestQueue::Request RequestQueue::add(Request request)
{
    const QMutexLocker locker(&mutex);
    if (isShut || requests.size() >= longest)
        return request;
    requests.push_back(std::move(request));
    return nullptr;
}

void RequestQueue::watchNew(const std::function<void()> &action)
{
    const QMutexLocker locker(&mutex);
    for (const Request &request : requests) {
        if (!std::exchange(request->isWatched, true))
            request->promise->whenCanceled(action);
    }
}

RequestQueue::Request RequestQueue::takeNext()
{
    const QMutexLocker locker(&mutex);
    const auto found = std::find_if(requests.begin(), requests.end(),
        [](const Request &request) { return !request->promise->isCanceled(); });
    if (found == requests.end())
        return nullptr;
    Request taken = std::move(*found);
    requests.erase(found);
    return taken;
}

std::vector<RequestQueue::Request> RequestQueue::takeCanceled()
{
    const QMutexLocker locker(&mutex);
    return takeAllThat([](const QueuedRequest &request) { return request.promise->isCanceled(); });
}

std::vector<RequestQueue::Request> RequestQueue::takeAll()
{
    const QMutexLocker locker(&mutex);
    return takeAllThat([](const QueuedRequest &) { return true; });
}

std::vector<RequestQueue::Request> RequestQueue::shut()
{
    const QMutexLocker locker(&mutex);
    isShut = true;
    return takeAllThat([](const QueuedRequest &) { return true; });
}

void RequestQueue::open()
{
    const QMutexLocker locker(&mutex);
    isShut = false;
}

void RequestQueue::beginWaiting(milliseconds time)
{
    const QMutexLocker locker(&mutex);
    for (const Request &request : requests) {
        if (request->connectionWait.isForever())
            request->connectionWait = QDeadlineTimer(time);
    }
}

void RequestQueue::endWaiting()
{
    const QMutexLocker locker(&mutex);
    for (const Request &request : requests)
        request->connectionWait = QDeadlineTimer(QDeadlineTimer::Forever);
}

std::vector<RequestQueue::Request> RequestQueue::takeExpired()
{
    const QMutexLocker locker(&mutex);
    return takeAllThat([](const QueuedRequest &request) { return request.connectionWait.hasExpired(); });
}

std::optional<milliseconds> RequestQueue::nextExpiry() const
{
    const QMutexLocker locker(&mutex);
    std::optional<milliseconds> next;
    for (const Request &request : requests) {
        if (request->connectionWait.isForever())
            continue;
        const milliseconds left(request->connectionWait.remainingTime());
        next = std::min(left, next.value_or(left));
    }
    return next;
}

std::vector<RequestQueue::Request> RequestQueue::takeAllThat(const Condition &condition)
{
    const auto kept = std::stable_partition(requests.begin(), requests.end(),
        [&condition](const Request &request) { return !condition(*request); });
    std::vector<Request> taken(std::make_move_iterator(kept), std::make_move_iterator(requests.end()));
    requests.erase(kept, requests.end());
    return taken;
}

} // namespace tarn
