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

    // Blocks while the pipe is busy; false when nobody serves it.
    [[nodiscard]] bool open();
    // False for a pipe that no service can have.
    [[nodiscard]] bool canEverOpen() const;
    // Why the last open() failed and what the user can do about it.
    [[nodiscard]] QString openFailureText() const;
    [[nodiscard]] bool isOpen() const;
    // One write, because the service takes what it reads at once for one request.
    [[nodiscard]] bool send(const QByteArray &bytes);
    // All bytes are handed to the system.
    [[nodiscard]] bool isDrained() const;
    // Leaves at once and without a serviceGone(); what is not drained may be lost.
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
