#pragma once

#include "request_queue.h"

#include <QObject>
#include <QTimer>

#include <atomic>

namespace tarn {

// The requests that have not been written: it ends those that are cancelled, that are too many, and that find
// no connection in time. add() may be called from any thread, everything else from the object's own.
class WaitingRequests : public QObject
{
    Q_OBJECT

public:
    using Request = RequestQueue::Request;

    explicit WaitingRequests(QObject *parent);

    void add(Request request);
    // The next in order; null: none.
    [[nodiscard]] Request takeNext();
    // There is no connection: each request that is here now, and has no time limit yet, waits this long for
    // one.
    void waitForConnection(std::chrono::milliseconds time);
    void noteConnection();
    // All of them, to be ended with finishAll().
    [[nodiscard]] std::vector<Request> takeAll();
    // The same, and refuses every other one until open(), in the thread of its add().
    [[nodiscard]] std::vector<Request> shut();
    void open();

signals:
    // After add(), in the object's own thread.
    void arrived();

private:
    void takeNew();
    void dropCanceled();
    void dropExpired();
    void scheduleExpiry();

    RequestQueue queue;
    std::atomic<bool> isShut = true;
    QTimer expiryTimer;
};

// Continuations of the futures run in these.
void finish(const RequestQueue::Request &request, const Reply &reply);
void finishAll(const std::vector<RequestQueue::Request> &requests, Outcome outcome, const QString &reason);
void finishWithoutConnection(const std::vector<RequestQueue::Request> &requests);

} // namespace tarn
