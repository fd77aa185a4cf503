#include "panel/client/service_link.h"

#include "panel/client/connection_text.h"
#include "panel/session/session.h"

#include <QJsonDocument>

namespace tarnPanel {

namespace {

QString jsonText(const QJsonObject &message)
{
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

} // namespace

ServiceLink::ServiceLink(const QString &pipeName, std::unique_ptr<tarn::Client> client, Session &panelSession)
    : pipe(pipeName)
    , session(panelSession)
    , tarnClient(std::move(client))
{
    listen();
}

// The client ends its requests now; nobody here is to hear of it any more.
ServiceLink::~ServiceLink()
{
    for (auto *watcher : findChildren<QFutureWatcherBase *>(Qt::FindDirectChildrenOnly))
        watcher->disconnect(this);
    tarnClient->disconnect(this);
    disconnect();
}

void ServiceLink::listen()
{
    using tarn::Client;
    Client *client = tarnClient.get();
    connect(client, &Client::stateChanged, this, [this] {
        note(MessageKind::Connection, connectionText(*tarnClient));
        Q_EMIT changed();
    });
    connect(client, &Client::connectingFailed, this, [this] {
        note(MessageKind::Connection, QStringLiteral("Connecting failed. ") + problemText(*tarnClient));
        Q_EMIT changed();
    });
    connect(client, &Client::notificationReceived, this, [this](const tarn::Notification &notification) {
        note(MessageKind::Notification,
            QStringLiteral("%1 %2%3")
                .arg(notification.name, notification.data,
                    notification.isOld ? QStringLiteral(" (may be old)") : QString())
                .trimmed());
        const bool isTold = std::exchange(isAccessoryTold, false);
        if (notification.name == QLatin1String("changeAccessoryType") && !notification.isOld && !isTold)
            Q_EMIT accessoryChanged(accessory());
    });
    connect(client, &Client::otherMessageReceived, this,
        [this](const QJsonObject &message) { note(MessageKind::Other, jsonText(message)); });
    connect(client, &Client::garbageReceived, this,
        [this](const QByteArray &bytes) { note(MessageKind::Garbage, QString::fromUtf8(bytes)); });
    connect(client, &Client::requestWritten, this,
        [this](const QByteArray &request) { note(MessageKind::Sent, QString::fromUtf8(request)); });
    connect(client, &Client::answerReceived, this,
        [this](const QByteArray &answer) { note(MessageKind::Answer, QString::fromUtf8(answer)); });
    // It comes before the notification that it follows from.
    connect(client, &Client::accessoryChanged, this, [this](std::optional<tarn::Accessory> now) {
        isAccessoryTold = true;
        // An answer is followed by none.
        QMetaObject::invokeMethod(
            this, [this] { isAccessoryTold = false; }, Qt::QueuedConnection);
        Q_EMIT changed();
        Q_EMIT accessoryChanged(now);
    });
}

bool ServiceLink::isConnected() const
{
    return tarnClient->state() == tarn::Client::State::Connected;
}

void ServiceLink::order(
    const QString &command, const QString &data, QObject *context, const Use<tarn::Reply> &use)
{
    addToSession({}, data.isNull() ? QStringList {command} : QStringList {command, data});
    ask(command, data, context, use);
}

void ServiceLink::ask(
    const QString &command, const QString &data, QObject *context, const Use<tarn::Reply> &use)
{
    follow(data.isNull() ? command : command + u' ' + data, tarnClient->send(command, data), context, use);
}

void ServiceLink::addToSession(const QStringList &options, const QStringList &words)
{
    const bool isUsual = pipe == QStringLiteral("tarnPipe");
    const QStringList pipeOption = isUsual ? QStringList {} : QStringList {QStringLiteral("--pipe"), pipe};
    session.add({QStringLiteral("tarnctl"), pipeOption + options + words});
}

void ServiceLink::note(MessageKind kind, const QString &text)
{
    Q_EMIT noted(kind, text);
}

void ServiceLink::setUpdateText(const QString &text)
{
    runningUpdate = text;
    Q_EMIT changed();
}

void ServiceLink::noteEnd(const QString &text, const tarn::Reply &reply)
{
    if (reply.answer().isEmpty() && reply.outcome() != tarn::Outcome::Sent)
        note(MessageKind::NotAnswered, text + QStringLiteral(": ") + reply.reason());
}

} // namespace tarnPanel
