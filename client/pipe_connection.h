#pragma once

#include "json_splitter.h"
#include "pipe_opening.h"

#include <QLocalSocket>
#include <QObject>
#include <QTimer>

namespace tarn {

// A connection to the service's pipe, with the incoming bytes cut into messages. Nothing in it waits.
//
// No signal is emitted while the socket emits one of its own: QLocalSocket reads nothing as long as a slot of
// its readyRead() runs, so a slot with an event loop, such as a dialog, would make the connection deaf.
class PipeConnection : public QObject
{
    Q_OBJECT

public:
    explicit PipeConnection(QString pipeName, QObject *parent = nullptr);
    ~PipeConnection() override;

    // Ends with opened() or openFailed(), which may come before it returns. Not while it is open or opening.
    void open();
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] bool isOpening() const;
    // One write, because the service takes the bytes of one read as one request. False when the connection
    // has ended.
    [[nodiscard]] bool send(const QByteArray &bytes);
    // True when all bytes have been handed to the system.
    [[nodiscard]] bool isDrained() const;
    // Disconnects at once and without a signal; bytes that are not drained may be lost.
    void close();

signals:
    void opened();
    void openFailed(const tarn::PipeFailure &failure);
    void documentReceived(const QByteArray &bytes);
    // Bytes that belong to no document.
    void garbageReceived(const QByteArray &bytes);
    void drained();
    // The service has closed the connection.
    void serviceGone();

private:
    // Calls the function from the event loop, unless the connection is another one by then.
    void later(void (PipeConnection::*function)());
    void tryOpening();
    void handleConnected();
    void handleError();
    void failOpening(const PipeFailure &failure);
    void readAvailable();
    void deliver();
    void dropStalledDocument();
    void handleDisconnected();
    void handleWritten();

    QString pipeName;
    QLocalSocket socket;
    JsonSplitter splitter;
    // What has been read and not delivered.
    QByteArrayList documents;
    QByteArray garbage;
    QTimer stallTimer;
    // While it runs, a busy pipe is tried again and the socket may go on connecting.
    QTimer openingTimer;
    QTimer busyTimer;
    // Changes with every connection, so that a slot that closes it ends the delivery of its messages.
    int connectionNumber = 0;
    bool isConnecting = false;
    bool isInUse = false;
};

} // namespace tarn
