#include "pipe/tarn_pipe_server.h"

#include "pipe/command_table.h"
#include "pipe/outbox/send_queue_thread.h"
#include "platform/process_wide.h"
#include "platform/sockets.h"
#include "platform/user_session.h"
#include "platform/version.h"

#include <QDebug>
#include <QFutureWatcher>
#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMutex>
#include <QPromise>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrent>

#include <memory>

namespace tarnPipeServer {
namespace {

// Keeps the replies of handlers that finish together in one order; taken before the queue's own lock.
QMutex replyMutex;

const QString commandKey = QStringLiteral("cmd");

// An empty object for a request that is not a JSON object.
QJsonObject parsed(const QByteArray &request)
{
    return QJsonDocument::fromJson(request).object();
}

// Null when the request names no known command.
const Command *commandOf(const QByteArray &request)
{
    return findCommand(parsed(request).value(commandKey).toString());
}

// An unknown or malformed request is only logged, so it waits for nothing.
Lane laneOf(const Command *command)
{
    return command ? command->lane : Lane::NeverWaits;
}

} // namespace

TarnPipeServer *TarnPipeServer::instance()
{
    return tarnPlatform::ProcessWide<TarnPipeServer>::instance();
}

TarnPipeServer::TarnPipeServer()
    : mostClients(tarnPlatform::clientLimit())
{
    prepareHandlerThreads();

    qDebug() << "TarnPipeServer ThreadID(): " << QThread::currentThreadId();
    localServer = new QLocalServer(this);
    SendQueueThread::setWriter([this](const QString &message) { sendDataToClient(message); });
    connect(localServer, &QLocalServer::newConnection, this, &TarnPipeServer::handleConnection);
    listenForClients();
    createSmartChargingTimer();
}

TarnPipeServer::~TarnPipeServer()
{
    if (localServer) {
        qDebug() << "Destory server resource!";
        stopListening();
        localServer->deleteLater();
    }
    if (clientOnline && clientSocket) {
        clientSocket->close();
        clientSocket->deleteLater();
    }
    if (smartChargingTimer->isActive())
        smartChargingTimer->stop();
    delete smartChargingTimer;
}

void TarnPipeServer::listenForClients()
{
    const QString pipeName = QStringLiteral("tarnPipe");
    tarnPlatform::removeLeftoverSocket(pipeName);
    localServer->listen(pipeName); // if it fails, the service runs without clients, for the accessories
}

void TarnPipeServer::stopListening()
{
    listeningEnded = true;
    localServer->close();
}

QString TarnPipeServer::dispatch(const QByteArray &request)
{
    return replyTo(handle(request));
}

Lane TarnPipeServer::laneOf(const QByteArray &request)
{
    return tarnPipeServer::laneOf(commandOf(request));
}

// On the server's thread. Requests are parsed twice, here and on their handler's thread, which costs
// microseconds: the lane must be the right one, and a command's name may also occur elsewhere in a request.
QFuture<QString> TarnPipeServer::startHandler(const QByteArray &request)
{
    const Command *command = commandOf(request);
    QThreadPool *threads = threadsOf(tarnPipeServer::laneOf(command));
    if (!command || !command->answer)
        return QtConcurrent::run(threads, [this, request] { return dispatch(request); });
    // With a promise, because in Qt 6.4 a continuation may run twice when it is added while its future
    // finishes.
    const auto promise = std::make_shared<QPromise<QString>>();
    promise->start();
    threads->start([request, promise] {
        threadsOf(Lane::WaitsForEc)->start([handled = handle(request), promise] {
            promise->addResult(replyTo(handled));
            promise->finish();
        });
    });
    return promise->future();
}

TarnPipeServer::Handled TarnPipeServer::handle(const QByteArray &request)
{
    qDebug() << QThread::currentThreadId();
    Handled handled {parsed(request), {}};
    const QJsonValue command = handled.request.value(commandKey);
    if (!command.isString()) {
        qDebug() << "cmd is not a string.";
        return handled;
    }
    const QString name = command.toString();
    qDebug() << name;
    const Command *found = findCommand(name);
    if (!found) {
        qDebug() << "Unknown command: " << name;
        return handled;
    }
    handled.reply = found->handler(handled.request);
    handled.answer = found->answer;
    return handled;
}

QString TarnPipeServer::replyTo(Handled handled)
{
    return handled.answer ? handled.answer(handled.request) : handled.reply;
}

bool TarnPipeServer::isServiceSession() const
{
    return tarnPlatform::UserSession::system().isServiceSession();
}

bool TarnPipeServer::hasTooManyClients() const
{
    return localServer->findChildren<QLocalSocket *>(Qt::FindDirectChildrenOnly).size() > mostClients;
}

// handleDisconnection() stops sending, whichever client has left. A client that left before the new one
// connected must therefore be handled first: when both sockets are ready at once, Qt reports the new
// connection first.
void TarnPipeServer::handleEarlierDisconnections(const QLocalSocket *newClient)
{
    constexpr int lookCount = 2; // one for its last data, one for its end
    const auto sockets = localServer->findChildren<QLocalSocket *>(Qt::FindDirectChildrenOnly);
    for (QLocalSocket *socket : sockets) {
        for (int look = 0; look < lookCount && socket != newClient && socket->waitForReadyRead(0); ++look) { }
    }
}

void TarnPipeServer::handleConnection()
{
    QLocalSocket *newClient = localServer->nextPendingConnection();
    handleEarlierDisconnections(newClient);
    if (newClient && hasTooManyClients()) {
        qWarning("too many clients, the newest one is turned away");
        delete newClient;
        return;
    }
    qDebug() << "is connection!";
    qDebug() << "Tarn Service version is " << tarnPlatform::version();
    sendThread = SendQueueThread::instance();
    sendThread->startSending();
    clientOnline = true;
    qDebug() << QThread::currentThreadId();

    clientSocket = newClient;
    if (!clientSocket)
        return;
    connect(clientSocket, &QLocalSocket::readyRead, this, &TarnPipeServer::readDataFromClient);
    connect(clientSocket, &QLocalSocket::disconnected, this, &TarnPipeServer::handleDisconnection);
}

void TarnPipeServer::handleDisconnection()
{
    clientSocket = qobject_cast<QLocalSocket *>(sender());
    if (clientSocket) {
        clientOnline = false;
        qDebug() << "Tarn pipe client is exit!";
        clientSocket->close();
        clientSocket->deleteLater();
    }
    if (sendThread) {
        sendThread->setRunning(false);
        sendThread->requestStop();
        sendThread->quit();
    }
    // On Unix the local server stops listening when there is no descriptor for a new client; now one is free.
    if (!listeningEnded && !localServer->isListening())
        listenForClients();
}

void TarnPipeServer::readDataFromClient()
{
    qDebug() << QThread::currentThreadId();
    clientSocket = qobject_cast<QLocalSocket *>(sender());
    if (!clientSocket)
        return;
    QByteArray request = clientSocket->readAll();
    request.squeeze(); // its buffer has 32 KiB, and a request that waits for the EC may be kept for ever
    qDebug() << request;

    auto *watcher = new QFutureWatcher<QString>(this);
    connect(watcher, &QFutureWatcher<QString>::finished, this, [this, watcher] {
        if (clientSocket) {
            const QString reply = watcher->result();
            const QMutexLocker locker(&replyMutex);
            SendQueueThread::instance()->enqueueMessage(reply);
        }
        watcher->deleteLater();
    });
    watcher->setFuture(startHandler(request));
}

void TarnPipeServer::sendDataToClient(QString message)
{
    const QByteArray bytes = message.toUtf8();
    if (QThread::currentThread() == thread()) {
        writeToClient(bytes);
        return;
    }
    // A socket may be used only on its own thread. Waiting for the write keeps order and pauses exact.
    QMetaObject::invokeMethod(
        this, [this, bytes] { writeToClient(bytes); }, Qt::BlockingQueuedConnection);
}

void TarnPipeServer::writeToClient(const QByteArray &message)
{
    // To write to a client that has left closes its socket, and what it asked before would never be read.
    if (clientOnline && clientSocket)
        clientSocket->waitForReadyRead(0);
    if (!clientOnline) {
        qDebug() << "tarn client is exit!";
        return;
    }
    if (!clientSocket || !clientSocket->isOpen()) {
        qDebug() << "clientSocket isn't online";
        return;
    }
    qDebug().noquote().nospace() << "send" << message;
    clientSocket->write(message);
    clientSocket->flush();
}

} // namespace tarnPipeServer
