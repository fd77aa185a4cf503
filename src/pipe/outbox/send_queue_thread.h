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

// The one way by which messages leave for the client: first in, first out, 500 ms before each, which is all
// that separates two messages on the pipe. The queue has no bound and outlives clients; what is queued while
// nobody is connected goes to the next client.
class SendQueueThread : public QThread
{
    Q_OBJECT

public:
    static SendQueueThread *instance();

    // What hands a message to the client, called on the send thread; it may block. Set before the loop
    // starts, as the queue itself is made at its first use only.
    using Write = std::function<void(const QString &message)>;
    static void setWriter(const Write &write);

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
    std::atomic<bool> ending {false}; // with the process
    // The loop has seen that it is not to run and is on its way out of run().
    bool returning = false;
};

} // namespace tarnPipeServer
