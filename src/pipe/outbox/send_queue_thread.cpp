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
    // A loop that is on its way out would swallow the start: let it go first. It has nothing left to send.
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
            continue; // the end of the process does not wait half a second for nothing
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
    // What waits in the queue at a stop stays for the next client.
    return stopRequested ? QString() : messageQueue.takeFirst();
}

// Decided under the queue's lock, so that a start in the same moment either keeps this loop going or knows
// that it has to wait for its end.
bool SendQueueThread::decideToReturn()
{
    const QMutexLocker locker(&queueMutex);
    returning = !running;
    return returning;
}

} // namespace tarnPipeServer
