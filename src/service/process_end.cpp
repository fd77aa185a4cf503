#include "service/process_end.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_reader.h"
#include "pipe/handler_threads.h"
#include "pipe/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "platform/process_exit.h"
#include "platform/process_wide.h"
#include "platform/unfinished_step.h"
#include "update/tool_run.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDebug>

#include <chrono>
#include <cstdio>

namespace {

using namespace std::chrono_literals;
using tarnDeviceInfos::EcDirverReader;
using tarnPipeServer::SendQueueThread;
using tarnPipeServer::TarnPipeServer;
using tarnPlatform::ProcessWide;
using tarnPlatform::UnfinishedStep;

// A healthy cycle of the monitor and the pause before a message end well within it; a stop may take 3 s.
constexpr auto patience = 1500ms;
// For what must not be left half done. Under the service manager a watchdog ends the process soon after it.
constexpr auto lastPatience = 2300ms;
constexpr int pollMs = 10;
// A thread that has finished still gives back what Qt keeps for it, which nothing tells the end of.
constexpr unsigned long farewellMs = 20;

bool hasFinished(const QThread *thread)
{
    return !thread || !thread->isRunning();
}

} // namespace

int endProcess(int exitCode, tarnPlatform::ServiceManager &manager)
{
    auto *monitor = ProcessWide<EcDirverReader>::existing();
    auto *sender = ProcessWide<SendQueueThread>::existing();
    if (auto *server = ProcessWide<TarnPipeServer>::existing())
        server->closeDoor();
    if (monitor)
        monitor->requestEnd();
    if (sender)
        sender->endQuietly();
    tarnDeviceInfos::ecAccessMutex.releaseWaiters();

    // The send thread hands its last message to this thread, so events are served until all have gone.
    const auto everythingFinished = [monitor, sender] {
        return hasFinished(monitor) && hasFinished(sender) && tarnPipeServer::waitForHandlers(pollMs);
    };
    const QDeadlineTimer deadline(patience);
    const QDeadlineTimer lastDeadline(lastPatience);
    const auto isWorthWaiting = [&deadline, &lastDeadline] {
        return !deadline.hasExpired() || (UnfinishedStep::any() && !lastDeadline.hasExpired());
    };
    bool finished = everythingFinished();
    while (!finished && isWorthWaiting()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, pollMs);
        QThread::msleep(pollMs);
        finished = everythingFinished();
    }
    if (!finished) {
        if (tarnFirmwareUpdate::isToolRunning())
            qWarning() << "The service ends while a tool flashes; the tool goes on until it is done.";
        std::fflush(nullptr);
        manager.reportStopped(exitCode);
        tarnPlatform::exitAtOnce(exitCode); // a normal end would wait for the threads that are held up
    }
    if (sender)
        sender->wait(); // for the last steps of a thread that counts as finished already
    delete monitor;
    QThread::msleep(farewellMs);
    manager.reportStopped(exitCode);
    return exitCode;
}
