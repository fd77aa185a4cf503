#include "pipe/outbox/send_queue_thread.h"

#include "platform/process_wide.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnPipeServer {
namespace {

using namespace std::chrono_literals;

constexpr auto messagePause = 500ms;

SendQueueThread::Write writeToClient;

} // namespace

SendQueueThread *SendQueueThread::instance()
{
    return tarnPlatform::ProcessWide<SendQueueThread>::instance();
}

void SendQueueThread::setWriter(const Write &write)
{
    writeToClient = write;
}

SendQueueThread::SendQueueThread()
{
    qDebug() << "SendQueueThread is creat!";
}

void SendQueueThread::enqueueMessage(const QString &message)
{
    const QMutexLocker locker(&queueMutex);
    messageQueue.append(message);
    queueNotEmpty.wakeOne();
}

QList<QString> SendQueueThread::waitingMessages()
{
    const QMutexLocker locker(&queueMutex);
    return messageQueue;
}

void SendQueueThread::requestStop()
{
    qDebug() << "send Thread is quit!";
    stopTaking();
}

void SendQueueThread::startSending()
{
    bool leaving = false;
    {
        const QMutexLocker locker(&queueMutex);
        stopRequested = false;
        running = true;
        leaving = returning;
        returning = false;
    }
    // start() does nothing while the thread runs, so wait for a loop that is returning. It sends nothing
    // more.
    if (leaving)
        wait();
    start(QThread::InheritPriority);
}

void SendQueueThread::endQuietly()
{
    ending = true;
    running = false;
    stopTaking();
}

void SendQueueThread::run()
{
    qDebug() << "server send is running!";
    while (!decideToReturn()) {
        const QString message = takeNextMessage();
        if (ending && message.isEmpty())
            continue; // the end of the process must not wait for the pause before an empty message
        tarnPlatform::sleepFor(messagePause);
        writeToClient(message);
    }
}

void SendQueueThread::stopTaking()
{
    const QMutexLocker locker(&queueMutex);
    stopRequested = true;
    queueNotEmpty.wakeAll();
}

QString SendQueueThread::takeNextMessage()
{
    const QMutexLocker locker(&queueMutex);
    while (messageQueue.isEmpty() && !stopRequested) {
        qDebug() << "Queue is waiting!";
        queueNotEmpty.wait(&queueMutex);
    }
    // Messages that are queued at a stop stay for the next client.
    return stopRequested ? QString() : messageQueue.takeFirst();
}

// Under the queue's lock, so that a startSending() at the same time either keeps this loop running or sees
// that it has to wait for its end.
bool SendQueueThread::decideToReturn()
{
    const QMutexLocker locker(&queueMutex);
    returning = !running;
    return returning;
}

} // namespace tarnPipeServer
