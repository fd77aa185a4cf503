#include "pipe/handler_threads.h"

#include <QThreadPool>

#include <algorithm>
#include <iterator>

namespace tarnPipeServer {
namespace {

// With the pool's default size two handlers that wait for the EC could hold up all others.
constexpr int minimumThreads = 64;

constexpr const char *needNoEcOrLetGoOfIt[] = {
    "getAccessoryType", "requestLeaveMcuUpdateMode", "requestEcUpdate"};
constexpr qsizetype longestSuchRequest = 4096; // a file name and the client's own fields included

// Deliberately never destroyed: its handlers may outlive the application object, like those of the global
// pool.
QThreadPool &emergencyExit()
{
    static auto *pool = [] {
        auto *threads = new QThreadPool;
        threads->setMaxThreadCount(minimumThreads);
        return threads;
    }();
    return *pool;
}

// By its text only: a request that merely looks so does no harm there.
bool mayNotWait(const QByteArray &request)
{
    return request.size() <= longestSuchRequest
        && std::any_of(std::begin(needNoEcOrLetGoOfIt), std::end(needNoEcOrLetGoOfIt),
            [&request](const char *command) { return request.contains(command); });
}

} // namespace

void prepareHandlerThreads()
{
    QThreadPool *pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(std::max(pool->maxThreadCount(), minimumThreads));
}

QThreadPool *handlerThreadsFor(const QByteArray &request)
{
    QThreadPool *pool = QThreadPool::globalInstance();
    const bool isFull = pool->activeThreadCount() >= pool->maxThreadCount();
    return isFull && mayNotWait(request) ? &emergencyExit() : pool;
}

bool waitForHandlers(int milliseconds)
{
    return QThreadPool::globalInstance()->waitForDone(milliseconds)
        && emergencyExit().waitForDone(milliseconds);
}

} // namespace tarnPipeServer
