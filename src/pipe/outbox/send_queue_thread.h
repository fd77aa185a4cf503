#pragma once

#include <QList>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <functional>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnPipeServer {

// The only way of messages to the client: first in, first out, with a pause of 500 ms before each. Nothing
// else separates two messages on the pipe. The queue is unbounded and outlives clients: messages that are
// queued while no client is connected go to the next one.
class SendQueueThread : public QThread
{
    Q_OBJECT

public:
    static SendQueueThread *instance();

    // Hands a message to the client. Called on the send thread; may block. Static, and to be set before the
    // loop starts, because the queue object is created only at its first use.
    using Write = std::function<void(const QString &message)>;
    static void setWriter(const Write &write);

    // Any thread. Empty messages are sent like any other: a pause and a write of nothing.
    void enqueueMessage(const QString &message);

    // The messages still to be sent, oldest first.
    [[nodiscard]] QList<QString> waitingMessages();

    void setStopRequested(bool requested) { stopRequested = requested; }
    void setRunning(bool keepRunning) { running = keepRunning; }
    // Wakes the loop, which then takes nothing more out of the queue.
    void requestStop();

    // Starts the loop, or keeps the present one going. Not to be called on the send thread.
    void startSending();
    // Like setRunning(false) and requestStop(), but logs nothing and sends no last empty message. For the end
    // of the process.
    void endQuietly();

    void run() override;

private:
    friend class tarnPlatform::ProcessWide<SendQueueThread>;
    SendQueueThread();

    void stopTaking();
    QString takeNextMessage();
    bool decideToReturn();

    QList<QString> messageQueue;
    QMutex queueMutex; // guards messageQueue and returning
    QWaitCondition queueNotEmpty;

    // What a round of the loop does:
    //   running  stopRequested  ending
    //   yes      no             no      waits for a message, sends it, goes on
    //   yes      yes            no      takes no message, sends an empty one, goes on
    //   no       no             no      waits for a message, sends it, returns
    //   no       yes            no      takes no message, sends an empty one, returns
    //   no       yes            yes     takes and sends nothing, returns
    // startSending() leads to the first line, a client that leaves to the fourth, the end of the process to
    // the fifth. Nothing clears ending.
    std::atomic<bool> running {true};
    std::atomic<bool> stopRequested {false};
    std::atomic<bool> ending {false}; // the process ends
    // The loop has found running cleared and is returning from run().
    bool returning = false;
};

} // namespace tarnPipeServer
