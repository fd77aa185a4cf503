#pragma once

#include "tarn/reply.h"

#include <QDeadlineTimer>
#include <QFutureWatcher>
#include <QPromise>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace tarn {

// The progress value of a future whose request has been written.
inline constexpr int writtenProgress = 1;

// The future's side of a request, whatever its type.
class ReplyPromise
{
public:
    ReplyPromise() = default;
    virtual ~ReplyPromise() = default;
    ReplyPromise(const ReplyPromise &) = delete;
    ReplyPromise &operator=(const ReplyPromise &) = delete;

    [[nodiscard]] virtual bool isCanceled() const = 0;
    // Runs the action in the event loop of the calling thread. At most once for a promise.
    virtual void whenCanceled(std::function<void()> action) = 0;
    // The request is about to be written: cancelling it comes too late from now on. False when it came
    // before.
    [[nodiscard]] virtual bool noteWritten() = 0;
    // The last call. Continuations of the future may run in it.
    virtual void finish(const Reply &reply) = 0;
};

template <typename T> class TypedPromise : public ReplyPromise
{
public:
    using Conversion = std::function<T(const Reply &)>;

    explicit TypedPromise(Conversion replyConversion)
        : convert(std::move(replyConversion))
    {
        promise.start();
    }

    [[nodiscard]] QFuture<T> future() const { return promise.future(); }

    [[nodiscard]] bool isCanceled() const override { return promise.isCanceled(); }

    void whenCanceled(std::function<void()> action) override
    {
        watcher = std::make_unique<QFutureWatcher<T>>();
        QObject::connect(watcher.get(), &QFutureWatcherBase::canceled, watcher.get(), std::move(action));
        watcher->setFuture(promise.future());
    }

    // A cancelled future takes no progress.
    [[nodiscard]] bool noteWritten() override
    {
        promise.setProgressValue(writtenProgress);
        return promise.future().progressValue() == writtenProgress;
    }

    void finish(const Reply &reply) override
    {
        watcher.reset();
        promise.addResult(convert(reply));
        promise.finish();
    }

private:
    QPromise<T> promise;
    Conversion convert;
    std::unique_ptr<QFutureWatcher<T>> watcher;
};

// A request that has not been written yet, or that waits for its answer.
struct QueuedRequest
{
    QString command;
    // A null string: the request has no data.
    QString data;
    // Nothing: as long as the command usually needs.
    std::optional<std::chrono::milliseconds> limit;
    std::unique_ptr<ReplyPromise> promise;
    // How long it waits for a connection.
    QDeadlineTimer connectionWait {QDeadlineTimer::Forever};
    bool isWatched = false;
};

} // namespace tarn
