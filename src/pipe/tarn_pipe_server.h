#pragma once

#include "pipe/command.h"

#include <QByteArray>
#include <QFuture>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <atomic>

class QLocalServer;
class QLocalSocket;
class QTimer;

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnPipeServer {

class SendQueueThread;

// The only connection of client applications to the service: a local pipe on which each read is one JSON
// request. The object, its sockets and its timer live on the thread that first called instance(); handlers
// run on the threads of their command's lane. Messages go to one client at a time: the one that last
// connected, sent a request or left.
class TarnPipeServer : public QObject
{
    Q_OBJECT

public:
    static TarnPipeServer *instance();
    ~TarnPipeServer() override;

    // Accepts no more clients; for the end of the process.
    void stopListening();

    // Runs the handler of one request and returns its reply, empty for an unknown or malformed one. Any
    // thread.
    QString dispatch(const QByteArray &request);

    // Where the handler of this request is to run. Logs nothing: a request is logged on its handler's thread.
    [[nodiscard]] static Lane laneOf(const QByteArray &request);

    // True in session 0, where services run and no user sees a window.
    [[nodiscard]] bool isServiceSession() const;

public Q_SLOTS:
    void handleConnection();
    void handleDisconnection();
    void readDataFromClient();
    // Any thread but a handler's; returns when the message has been handed to the socket or dropped.
    void sendDataToClient(QString message);

Q_SIGNALS:
    void dataReceived();
    void startChangingTimer();
    void stopChangingTimer();

private:
    friend class tarnPlatform::ProcessWide<TarnPipeServer>;
    // A request whose handler has run.
    struct Handled
    {
        QJsonObject request;
        QString reply;
        Handler answer = nullptr;
    };

    TarnPipeServer();
    void listenForClients();
    [[nodiscard]] bool hasTooManyClients() const;
    void handleEarlierDisconnections(const QLocalSocket *newClient);
    QFuture<QString> startHandler(const QByteArray &request);
    static Handled handle(const QByteArray &request);
    static QString replyTo(Handled handled);
    void writeToClient(const QByteArray &message);

    // smart_charging_timer.cpp
    void createSmartChargingTimer();
    void startSmartChargingTimer();
    void stopSmartChargingTimer();
    void handleSmartChargingExpiry();

    std::atomic<bool> clientOnline {false};
    QLocalServer *localServer = nullptr;
    const int mostClients; // connected at once
    bool listeningEnded = false; // never cleared
    // Kept when its client leaves, because a reply that is finished later is still queued, for the next
    // client. Not dereferenced while clientOnline is false.
    QLocalSocket *clientSocket = nullptr;
    SendQueueThread *sendThread = nullptr;
    QTimer *smartChargingTimer = nullptr;
};

} // namespace tarnPipeServer
