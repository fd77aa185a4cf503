#include "end_to_end/service_client.h"

#include "end_to_end/test_system.h"
#include "support/seen_texts.h"

#include <QElapsedTimer>
#include <QJsonDocument>

#include <algorithm>

namespace tarnTest {
namespace {

// The service echoes every field; this one tells a reply from the others and from notifications.
const QString markKey = QStringLiteral("mark");

constexpr qint64 keepAliveMs = 2000;
constexpr int keepAliveAnswerMs = 5000;
const QByteArray keepAliveKey = "keepAlive";
const QByteArray keepAliveRequest = R"({"cmd":"getAccessoryType","keepAlive":true})";

} // namespace

void ServiceClient::leave()
{
    peer.leave();
    keepAlivesUnanswered = 0;
    waitUntil([this] { return peer.socket.state() == QLocalSocket::UnconnectedState; });
}

void ServiceClient::write(const QByteArray &bytes)
{
    unmarked += bytes;
    send(bytes);
}

// Requests that reach the service in one read are one request to it, which it would not understand. So the
// requests that keep the connection alive have to be answered first; the wait is bounded, because another
// client may have got the answer.
void ServiceClient::send(const QByteArray &bytes)
{
    const auto isAnswered = [this] {
        (void)documents();
        return keepAlivesUnanswered == 0;
    };
    (void)waitUntil(isAnswered, keepAliveAnswerMs);
    keepAlivesUnanswered = 0;
    peer.write(bytes);
}

QJsonObject ServiceClient::ask(QJsonObject request, int boundMs)
{
    const int mark = ++asked;
    request.insert(markKey, mark);
    send(QJsonDocument(request).toJson(QJsonDocument::Compact));
    QJsonObject reply;
    (void)waitConnected(
        [&] {
            for (const QByteArray &document : documents()) {
                const QJsonObject message = QJsonDocument::fromJson(document).object();
                if (message.value(markKey).toInt() == mark)
                    reply = message;
            }
            return !reply.isEmpty();
        },
        boundMs);
    reply.remove(markKey);
    return reply;
}

QString ServiceClient::answer(const char *command, const char *data)
{
    QJsonObject request {{QStringLiteral("cmd"), QString::fromLatin1(command)}};
    if (data)
        request.insert(QStringLiteral("data"), QString::fromLatin1(data));
    const QJsonObject reply = ask(request);
    QStringList added;
    for (const char *key : {"data", "result"}) {
        const QString name = QString::fromLatin1(key);
        if (reply.contains(name) && reply.value(name) != request.value(name))
            added << reply.value(name).toString();
    }
    return reply.isEmpty() ? QStringLiteral("(no reply)") : added.join(QLatin1Char(' '));
}

bool ServiceClient::waitConnected(const std::function<bool()> &condition, int boundMs)
{
    QElapsedTimer sinceRequest;
    sinceRequest.start();
    return waitUntil(
        [&] {
            if (losesIdleConnections() && sinceRequest.elapsed() > keepAliveMs) {
                peer.write(keepAliveRequest);
                ++keepAlivesUnanswered;
                sinceRequest.start();
            }
            return condition();
        },
        boundMs);
}

bool ServiceClient::waitForNotification(const char *command, const char *data, int boundMs)
{
    return waitUntil([=, this] { return notificationCount(command, data) > 0; }, boundMs);
}

qsizetype ServiceClient::notificationCount(const char *command, const char *data)
{
    const QJsonObject expected {{QStringLiteral("cmd"), QString::fromLatin1(command)},
        {QStringLiteral("data"), QString::fromLatin1(data)}};
    return documents().count(QJsonDocument(expected).toJson(QJsonDocument::Compact));
}

QByteArrayList ServiceClient::documents()
{
    const QByteArray bytes = peer.received();
    const QByteArrayList fresh = splitter.feed(QByteArrayView(bytes).sliced(taken)).documents;
    taken = bytes.size();
    for (const QByteArray &document : fresh) {
        if (document.contains(keepAliveKey)) {
            keepAlivesUnanswered = std::max(0, keepAlivesUnanswered - 1);
            continue;
        }
        noteMessage(document);
        arrived << document;
    }
    return arrived;
}

// What has no mark is a notification, unless the command was also written without one.
void ServiceClient::noteMessage(const QByteArray &document) const
{
    QJsonObject message = QJsonDocument::fromJson(document).object();
    const bool isReply = message.contains(markKey);
    if (!isReply && unmarked.contains(message.value(QStringLiteral("cmd")).toString().toUtf8()))
        return;
    message.remove(markKey);
    noteSeen(isReply ? "reply" : "notification",
        QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact)));
}

} // namespace tarnTest
