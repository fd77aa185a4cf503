#pragma once

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMap>
#include <QPointer>
#include <QStringList>

#include <functional>

namespace panelTest {

// A pipe of its own that plays the service: it remembers what is set and answers at once.
class ScriptedService : public QObject
{
public:
    ScriptedService()
    {
        pipe = QStringLiteral("panelTest-%1").arg(QCoreApplication::applicationPid());
        connect(&server, &QLocalServer::newConnection, this, [this] { takeConnection(); });
        startListening();
    }

    void startListening()
    {
        QLocalServer::removeServer(pipe);
        if (!server.listen(pipe))
            qFatal("The test's pipe cannot be opened.");
    }

    void leave()
    {
        server.close();
        drop();
    }

    void drop()
    {
        if (socket)
            socket->abort();
    }

    void write(const QByteArray &bytes)
    {
        if (!socket)
            return;
        socket->write(bytes);
        socket->flush();
    }

    void notify(const QString &command, const QString &data)
    {
        write(QJsonDocument(QJsonObject {{QStringLiteral("cmd"), command}, {QStringLiteral("data"), data}})
                  .toJson(QJsonDocument::Compact));
    }

    // Answers the last request that got no answer.
    void answerHeld()
    {
        const QString command = held.value(QStringLiteral("cmd")).toString();
        silent.removeAll(command);
        answer(std::exchange(held, {}));
    }

    [[nodiscard]] int count(const QString &request) const
    {
        return static_cast<int>(std::count(requests.cbegin(), requests.cend(), request));
    }

    QString pipe;
    // "name data", those that the client library sends by itself included.
    QStringList requests;
    // What getters answer; setters change it.
    QMap<QString, QString> values {
        {QStringLiteral("getAccessoryType"), QStringLiteral("dock")},
        {QStringLiteral("getTarnBatteryNum"), QStringLiteral("80")},
        {QStringLiteral("getTarnChargingStatus"), QStringLiteral("1")},
        {QStringLiteral("getKvaneBatteryNum"), QStringLiteral("55")},
        {QStringLiteral("getKvaneChargingStatus"), QStringLiteral("0")},
        {QStringLiteral("getKVaneLedLight"), QStringLiteral("10")},
        {QStringLiteral("getTarnPowerMode"), QStringLiteral("balance")},
        {QStringLiteral("getSmartChargingStatus"), QStringLiteral("ON")},
        {QStringLiteral("getDockLedStatus"), QStringLiteral("off")},
        {QStringLiteral("getGraphicsRGB"), QStringLiteral("cyan")},
        {QStringLiteral("getTarnKvaneSnCode"), QStringLiteral("0123456789ABCD")},
        {QStringLiteral("getMcuVersion"), QStringLiteral("1.23")},
        {QStringLiteral("requestEnterMcuUpdateMode"), QStringLiteral("successed")},
        {QStringLiteral("requestLeaveMcuUpdateMode"), QStringLiteral("2.05")},
        {QStringLiteral("requestStartEcUpdate"), QStringLiteral("successed")},
        {QStringLiteral("requestMcuUpdate"), QStringLiteral("successed")},
        {QStringLiteral("requestEcUpdate"), QStringLiteral("successed")},
    };
    // Requests that get no answer, and those that fail.
    QStringList silent;
    QStringList failing;
    QString profileOfFirst = QStringLiteral("1");
    QJsonObject held;

private:
    void takeConnection()
    {
        socket = server.nextPendingConnection();
        connect(socket, &QLocalSocket::readyRead, this, [this, from = socket.data()] {
            const QJsonObject request = QJsonDocument::fromJson(from->readAll()).object();
            socket = from;
            const QString data = request.value(QStringLiteral("data")).toString();
            requests << (request.value(QStringLiteral("cmd")).toString() + u' ' + data).trimmed();
            answer(request);
        });
    }

    void answer(QJsonObject request)
    {
        const QString command = request.value(QStringLiteral("cmd")).toString();
        const QString data = request.value(QStringLiteral("data")).toString();
        const bool isNeverAnswered =
            command == QStringLiteral("powerModeControl") && data == QStringLiteral("last");
        if (silent.contains(command)) {
            held = request;
            return;
        }
        if (isNeverAnswered)
            return;
        const bool isFailing = failing.contains(command);
        const QString word = isFailing ? QStringLiteral("failed") : QStringLiteral("successed");
        if (command == QStringLiteral("getMcuUpdateParameters")) {
            request.insert(QStringLiteral("mcuVer"), values.value(QStringLiteral("getMcuVersion")));
            request.insert(QStringLiteral("hardwareVer"), QStringLiteral("3"));
            request.insert(QStringLiteral("accessoryCode"), QStringLiteral("1"));
        } else if (values.contains(command)) {
            request.insert(QStringLiteral("data"), isFailing ? word : values.value(command));
            if (command == QStringLiteral("requestMcuUpdate"))
                request.insert(QStringLiteral("mcuVer"), QStringLiteral("3.14"));
        } else if (command == QStringLiteral("powerModeControl") && data == QStringLiteral("first")) {
            request.insert(QStringLiteral("result"), profileOfFirst);
        } else if (command != QStringLiteral("setKVaneLedLight")
            && command != QStringLiteral("requestBeginGraphicsMcuUpdate")) {
            request.insert(QStringLiteral("result"), word);
        }
        if (!isFailing)
            change(command, data);
        write(QJsonDocument(request).toJson(QJsonDocument::Compact));
    }

    void change(const QString &command, const QString &data)
    {
        if (!command.startsWith(QStringLiteral("set")))
            return;
        const QString getter = QStringLiteral("get") + command.mid(3);
        if (data == QStringLiteral("on") && command == QStringLiteral("setGraphicsRGB"))
            values[getter] = QStringLiteral("red");
        else
            values[getter] = data;
    }

    QLocalServer server;
    QPointer<QLocalSocket> socket;
};

} // namespace panelTest
