#pragma once

#include <QList>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

#include <atomic>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnPipeServer {

// The one way by which messages leave for the client: first in, first out, 500 ms before each, which is all
// that separates two messages on the pipe. The queue has no bound and outlives clients; what is queued while
// nobody is connected goes to the next client.
class SendQueueThread : public QThread
{
    Q_OBJECT

public:
    static SendQueueThread *instance();

    // Any thread. Empty messages are sent like any other: a pause and a write of nothing.
    void enqueueMessage(const QString &message);

    // What waits to be sent, oldest first.
    [[nodiscard]] QList<QString> waitingMessages();

    void setStopRequested(bool requested) { stopRequested = requested; }
    void setRunning(bool keepRunning) { running = keepRunning; }
    // Wakes the loop, which then takes nothing more out of the queue.
    void requestStop();

    // Starts the loop, or keeps the present one going. Not to be called on the send thread.
    void startSending();
    // As clearing running and requestStop, without a word and without a last empty message: for the end of
    // the process.
    void endQuietly();

    void run() override;

private:
    friend class tarnPlatform::ProcessWide<SendQueueThread>;
    SendQueueThread();

    void stopTaking();
    QString takeNextMessage();
    bool decideToReturn();

    std::atomic<bool> running {true};
    QList<QString> messageQueue;
    QMutex queueMutex; // guards messageQueue and returning
    QWaitCondition queueNotEmpty;
    std::atomic<bool> stopRequested {false};
    std::atomic<bool> ending {false}; // with the process; nothing takes it back
    bool returning = false; // the loop has made up its mind to return; only a new start brings it back
};

} // namespace tarnPipeServer
