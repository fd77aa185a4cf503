#include "service/service_end.h"

#include "device/ec_access_lock.h"
#include "device/monitor/ec_dirver_reader.h"
#include "device/recording/ec_recorder.h"
#include "pipe/handler_threads.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "platform/end_budget.h"
#include "platform/process_end.h"
#include "platform/process_wide.h"
#include "update/tool_run.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDebug>

#include <chrono>
#include <cstdio>

namespace {

using tarnDeviceInfos::EcDirverReader;
using tarnPipeServer::SendQueueThread;
using tarnPipeServer::TarnPipeServer;
using tarnPlatform::ProcessWide;
using tarnPlatform::UnfinishedStep;
namespace endBudget = tarnPlatform::endBudget;

constexpr int pollMs = 10;
// A thread that QThread reports as finished still frees its Qt thread data. Qt does not tell when it has.
constexpr unsigned long threadDataMs = 20;
constexpr std::chrono::milliseconds longestRecordingEnd {100};

bool hasFinished(const QThread *thread)
{
    return !thread || !thread->isRunning();
}

} // namespace

int endProcess(int exitCode, tarnPlatform::ServiceManager &manager)
{
    tarnPlatform::beginProcessEnd();
    auto *monitor = ProcessWide<EcDirverReader>::existing();
    auto *sender = ProcessWide<SendQueueThread>::existing();
    if (auto *server = ProcessWide<TarnPipeServer>::existing())
        server->stopListening();
    if (monitor)
        monitor->requestEnd();
    if (sender)
        sender->endQuietly();
    tarnDeviceInfos::ecAccessMutex.releaseWaiters();

    // The send thread hands its last message to this thread, so it handles events until all threads have
    // finished.
    const auto everythingFinished = [monitor, sender] {
        return hasFinished(monitor) && hasFinished(sender) && tarnPipeServer::waitForHandlers(pollMs);
    };
    const QDeadlineTimer deadline(endBudget::threads);
    const QDeadlineTimer lastDeadline(endBudget::unfinishedStep);
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
        if (auto *recorder = tarnRecording::EcRecorder::existing())
            recorder->flushWithin(longestRecordingEnd); // a thread may be held up in writing it
        manager.reportStopped(exitCode);
        tarnPlatform::exitAtOnce(exitCode); // a normal end would wait for the threads that are held up
    }
    // A thread for which isRunning() is false may still have its last steps to do, with its object.
    if (sender)
        sender->wait();
    if (monitor)
        monitor->wait();
    delete monitor;
    QThread::msleep(threadDataMs);
    if (auto *recorder = tarnRecording::EcRecorder::existing())
        recorder->flush();
    manager.reportStopped(exitCode);
    return exitCode;
}
