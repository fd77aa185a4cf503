#include "pipe/handler_threads.h"

#include <QDeadlineTimer>
#include <QThreadPool>

#include <algorithm>
#include <iterator>

namespace tarnPipeServer {
namespace {

// The pool's default size is the number of cores, so a few handlers that wait for the EC could hold up all
// others. Handlers that need no EC get as many, because switching off the GPU before an update takes 3 s and
// more.
constexpr int minimumThreads = 64;

// WaitsForEc, the global pool, comes last, because a leave makes its reply there.
constexpr Lane lanes[] = {Lane::LeavesMcuUpdateMode, Lane::UpdatesEc, Lane::NeverWaits, Lane::WaitsForEc};

// Never destroyed, because its handlers may outlive the application object, like those of the global pool.
QThreadPool *newThreads(int count)
{
    auto *threads = new QThreadPool;
    threads->setMaxThreadCount(count);
    return threads;
}

} // namespace

void prepareHandlerThreads()
{
    QThreadPool *pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(std::max(pool->maxThreadCount(), minimumThreads));
}

QThreadPool *threadsOf(Lane lane)
{
    static QThreadPool *const leaving = newThreads(1);
    static QThreadPool *const updatingEc = newThreads(1);
    static QThreadPool *const neverWaiting = newThreads(minimumThreads);
    switch (lane) {
    case Lane::WaitsForEc:
        break;
    case Lane::LeavesMcuUpdateMode:
        return leaving;
    case Lane::UpdatesEc:
        return updatingEc;
    case Lane::NeverWaits:
        return neverWaiting;
    }
    return QThreadPool::globalInstance();
}

bool waitForHandlers(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    return std::all_of(std::begin(lanes), std::end(lanes), [&deadline](Lane lane) {
        return threadsOf(lane)->waitForDone(static_cast<int>(deadline.remainingTime()));
    });
}

} // namespace tarnPipeServer
