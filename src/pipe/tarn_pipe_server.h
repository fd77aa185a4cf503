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

// The service's only door for client applications: a local pipe on which each read is one JSON request. The
// object, its sockets and its timer live on the thread that first asked for it; handlers run on the threads
// of their command's lane. It talks to one client at a time: the socket that last connected, asked or left.
class TarnPipeServer : public QObject
{
    Q_OBJECT

public:
    static TarnPipeServer *instance();
    ~TarnPipeServer() override;

    // Takes no more clients, for the end of the process.
    void stopListening();

    // Runs the handler of one request and returns its reply, empty for what is not understood. Any thread.
    QString dispatch(const QByteArray &request);

    // Where the handler of this request is to run. Says nothing: the log tells of a request on its worker.
    [[nodiscard]] static Lane laneOf(const QByteArray &request);

    // True in session 0, where services run and no user sees anything.
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
    const int mostClients; // for clients at once
    bool listeningEnded = false; // for good
    // Deliberately left as it is when its client goes away: a reply that is finished later is still queued,
    // for the next client. Never looked into while clientOnline is false.
    QLocalSocket *clientSocket = nullptr;
    SendQueueThread *sendThread = nullptr;
    QTimer *smartChargingTimer = nullptr;
};

} // namespace tarnPipeServer
