#pragma once

#include "client/json_splitter.h"
#include "support/pipe_peer.h"

#include <QByteArrayList>
#include <QJsonObject>

#include <functional>

namespace tarnTest {

// A client of a real service: splits the stream into messages and tells replies from notifications.
class ServiceClient
{
public:
    [[nodiscard]] bool connectToService() { return peer.connectToService(); }
    void leave();
    void write(const QByteArray &bytes);

    // Sends the request and waits for the message that echoes its mark; nothing if none comes.
    [[nodiscard]] QJsonObject ask(QJsonObject request, int boundMs = 120000);
    // The same for a command with data; the added fields only, as "data" or "result" or both joined by a
    // blank.
    [[nodiscard]] QString answer(const char *command, const char *data = nullptr);
    // Waits for a notification, which may have come already.
    [[nodiscard]] bool waitForNotification(const char *command, const char *data, int boundMs = 20000);
    [[nodiscard]] qsizetype notificationCount(const char *command, const char *data);

    // Every document so far.
    [[nodiscard]] QByteArrayList documents();
    // As waitUntil, and keeps the connection alive meanwhile where that is needed.
    [[nodiscard]] bool waitConnected(const std::function<bool()> &condition, int boundMs);

private:
    void send(const QByteArray &bytes);
    void noteMessage(const QByteArray &document) const;

    PipePeer peer;
    tarn::JsonSplitter splitter;
    qsizetype taken = 0;
    QByteArrayList arrived;
    QByteArray unmarked; // requests that were written as they were
    int asked = 0;
    int keepAlivesUnanswered = 0;
};

} // namespace tarnTest
