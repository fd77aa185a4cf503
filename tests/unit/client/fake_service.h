#pragma once

#include <QByteArrayList>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QStringList>

#include <chrono>
#include <functional>

namespace tarnClientTest {

// A pipe of its own name that plays the service as far as a client sees it: one request per read, one client.
class FakeService : public QObject
{
public:
    FakeService();

    [[nodiscard]] QString pipeName() const;
    // What was read, one entry a read.
    [[nodiscard]] QByteArrayList requests() const;
    [[nodiscard]] QStringList commands() const;
    [[nodiscard]] int connections() const;
    [[nodiscard]] int openConnections() const;

    void onRequest(std::function<void(const QJsonObject &)> handler);
    void onConnection(std::function<void()> handler);

    void write(const QByteArray &bytes);
    // The request with one field added, as the service answers.
    void answer(QJsonObject request, const QString &key, const QString &value);
    void notify(const QString &command, const QString &data);
    void dropClient();
    void stopListening();
    void startListening();

    void later(std::chrono::milliseconds delay, std::function<void()> action);

private:
    void takeConnection();
    void takeRequest(QLocalSocket *socket);

    QString servedPipe;
    QLocalServer server;
    QPointer<QLocalSocket> client;
    QByteArrayList receivedRequests;
    int connectionCount = 0;
    int openCount = 0;
    std::function<void(const QJsonObject &)> requestHandler;
    std::function<void()> connectionHandler;
};

// Compact JSON.
[[nodiscard]] QByteArray compact(const QJsonObject &object);
[[nodiscard]] QJsonObject withField(QJsonObject object, const QString &key, const QString &value);

} // namespace tarnClientTest
