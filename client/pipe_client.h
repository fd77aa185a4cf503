#pragma once

#include "json_splitter.h"

#include <QLocalSocket>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace tarnClient {

// The connection to the service's pipe, with the incoming bytes cut into messages.
class PipeClient : public QObject
{
    Q_OBJECT

public:
    explicit PipeClient(QString pipeName, QObject *parent = nullptr);
    ~PipeClient() override;

    // Blocks while the pipe is busy; false when no service has it open.
    [[nodiscard]] bool open();
    // False when the pipe's name is too long for any service.
    [[nodiscard]] bool canEverOpen() const;
    // Why the last open() failed and what the user can do about it.
    [[nodiscard]] QString openFailureText() const;
    [[nodiscard]] bool isOpen() const;
    // One write, because the service takes the bytes of one read as one request.
    [[nodiscard]] bool send(const QByteArray &bytes);
    // True when all bytes have been handed to the system.
    [[nodiscard]] bool isDrained() const;
    // Disconnects at once and without a serviceGone(); bytes that are not drained may be lost.
    void close();

signals:
    void documentReceived(const QByteArray &bytes);
    // Bytes that belong to no document.
    void garbageReceived(const QByteArray &bytes);
    void drained();
    void serviceGone();

private:
    void readAvailable();
    void dropStalledDocument();
    void handleDisconnected();
    void handleWritten();

    QString pipeName;
    QLocalSocket socket;
    JsonSplitter splitter;
    QTimer stallTimer;
    QLocalSocket::LocalSocketError openError = QLocalSocket::UnknownSocketError;
    QString openErrorText;
};

} // namespace tarnClient
