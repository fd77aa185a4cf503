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
    m_pipeName = QStringLiteral("tarnctlTest-%1-%2").arg(QCoreApplication::applicationPid()).arg(++counter);
    connect(&m_server, &QLocalServer::newConnection, this, &FakeService::takeConnection);
    startListening();
}

QString FakeService::pipeName() const
{
    return m_pipeName;
}

QByteArrayList FakeService::requests() const
{
    return m_requests;
}

QStringList FakeService::commands() const
{
    QStringList names;
    for (const QByteArray &request : m_requests)
        names << QJsonDocument::fromJson(request).object().value(QStringLiteral("cmd")).toString();
    return names;
}

int FakeService::connections() const
{
    return m_connections;
}

void FakeService::onRequest(std::function<void(const QJsonObject &)> handler)
{
    m_requestHandler = std::move(handler);
}

void FakeService::onConnection(std::function<void()> handler)
{
    m_connectionHandler = std::move(handler);
}

void FakeService::write(const QByteArray &bytes)
{
    if (m_client) {
        m_client->write(bytes);
        m_client->flush();
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
    if (m_client)
        m_client->abort();
}

void FakeService::stopListening()
{
    m_server.close();
}

void FakeService::startListening()
{
    QLocalServer::removeServer(m_pipeName);
    if (!m_server.listen(m_pipeName))
        qFatal("The test's pipe cannot be opened.");
}

void FakeService::later(std::chrono::milliseconds delay, std::function<void()> action)
{
    QTimer::singleShot(delay, this, std::move(action));
}

void FakeService::takeConnection()
{
    QLocalSocket *socket = m_server.nextPendingConnection();
    ++m_connections;
    m_client = socket;
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { takeRequest(socket); });
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    if (m_connectionHandler)
        m_connectionHandler();
}

void FakeService::takeRequest(QLocalSocket *socket)
{
    m_client = socket;
    const QByteArray bytes = socket->readAll();
    m_requests << bytes;
    if (m_requestHandler)
        m_requestHandler(QJsonDocument::fromJson(bytes).object());
}

} // namespace tarnClientTest
