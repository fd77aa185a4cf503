#pragma once

#include "queued_request.h"

#include <QMutex>

#include <deque>
#include <vector>

namespace tarn {

// The requests that have not been written, in order. add() may be called from any thread, everything else
// from the client's. Requests are handed out to be finished by the caller, so that no continuation runs under
// the lock.
class RequestQueue
{
public:
    using Request = std::unique_ptr<QueuedRequest>;

    static constexpr std::size_t longest = 1000;

    // Gives the request back when the queue is full or shut. It is shut at first.
    [[nodiscard]] Request add(Request request);
    // Calls the action in the event loop when one of the requests has been cancelled.
    void watchNew(const std::function<void()> &action);
    // The next request that has not been cancelled; null: none.
    [[nodiscard]] Request takeNext();
    [[nodiscard]] std::vector<Request> takeCanceled();
    [[nodiscard]] std::vector<Request> takeAll();
    // The same, and takes no other any more.
    [[nodiscard]] std::vector<Request> shut();
    void open();

    // Gives those that have no limit yet this long to find a connection.
    void beginWaiting(std::chrono::milliseconds time);
    void endWaiting();
    [[nodiscard]] std::vector<Request> takeExpired();
    // Until the first of them expires; nothing when none does.
    [[nodiscard]] std::optional<std::chrono::milliseconds> nextExpiry() const;

private:
    using Condition = std::function<bool(const QueuedRequest &)>;

    // With the mutex locked.
    [[nodiscard]] std::vector<Request> takeAllThat(const Condition &condition);

    mutable QMutex mutex;
    std::deque<Request> requests;
    bool isShut = true;
};

} // namespace tarn
