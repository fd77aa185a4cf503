#include "fake_service.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTimer>

#include <atomic>

namespace tarnClientTest {

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonObject withField(QJsonObject object, const QString &key, const QString &value)
{
    object.insert(key, value);
    return object;
}

FakeService::FakeService()
{
    static std::atomic<int> counter = 0;
    servedPipe = QStringLiteral("tarnctlTest-%1-%2").arg(QCoreApplication::applicationPid()).arg(++counter);
    connect(&server, &QLocalServer::newConnection, this, &FakeService::takeConnection);
    startListening();
}

QString FakeService::pipeName() const
{
    return servedPipe;
}

QByteArrayList FakeService::requests() const
{
    return receivedRequests;
}

QStringList FakeService::commands() const
{
    QStringList names;
    for (const QByteArray &request : receivedRequests)
        names << QJsonDocument::fromJson(request).object().value(QStringLiteral("cmd")).toString();
    return names;
}

int FakeService::connections() const
{
    return connectionCount;
}

int FakeService::openConnections() const
{
    return openCount;
}

void FakeService::onRequest(std::function<void(const QJsonObject &)> handler)
{
    requestHandler = std::move(handler);
}

void FakeService::onConnection(std::function<void()> handler)
{
    connectionHandler = std::move(handler);
}

void FakeService::write(const QByteArray &bytes)
{
    if (client) {
        client->write(bytes);
        client->flush();
    }
}

void FakeService::answer(QJsonObject request, const QString &key, const QString &value)
{
    write(compact(withField(std::move(request), key, value)));
}

void FakeService::notify(const QString &command, const QString &data)
{
    write(compact({{QStringLiteral("cmd"), command}, {QStringLiteral("data"), data}}));
}

void FakeService::dropClient()
{
    if (client)
        client->abort();
}

void FakeService::stopListening()
{
    server.close();
}

void FakeService::startListening()
{
    QLocalServer::removeServer(servedPipe);
    if (!server.listen(servedPipe))
        qFatal("The test's pipe cannot be opened.");
}

void FakeService::later(std::chrono::milliseconds delay, std::function<void()> action)
{
    QTimer::singleShot(delay, this, std::move(action));
}

void FakeService::takeConnection()
{
    QLocalSocket *socket = server.nextPendingConnection();
    ++connectionCount;
    ++openCount;
    connect(socket, &QLocalSocket::disconnected, this, [this] { --openCount; });
    client = socket;
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { takeRequest(socket); });
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    if (connectionHandler)
        connectionHandler();
}

void FakeService::takeRequest(QLocalSocket *socket)
{
    client = socket;
    const QByteArray bytes = socket->readAll();
    receivedRequests << bytes;
    if (requestHandler)
        requestHandler(QJsonDocument::fromJson(bytes).object());
}

} // namespace tarnClientTest
