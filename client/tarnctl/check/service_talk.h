#pragma once

#include "check_times.h"

#include "device/recording/request_record.h"

#include <tarn/client.h>

#include <QList>
#include <QObject>
#include <QString>

#include <chrono>
#include <optional>

namespace tarnctl {

// A request and what came of it.
struct Exchange
{
    tarn::Reply reply {};
    QString text {}; // the answer in a line; without one why there is none
    int messagesBefore = 0; // that came before the answer
};

// The conversation with the service. Every request is noted in the journal right before it is written.
class ServiceTalk : public QObject
{
public:
    ServiceTalk(const QString &pipeName, const tarn::ClientTimes &times,
        std::optional<std::chrono::milliseconds> limit, tarnRecording::RequestJournal &journal);

    // Empty when there is a connection, else why not.
    [[nodiscard]] QString connectToService();
    // Waits for the answer, for as long as is usual for the command.
    [[nodiscard]] Exchange ask(const QString &command, const QString &data = {});
    // Whether the service still talks to this client: it answers what it has in memory, and has not been
    // found silent meanwhile. The library finds that out by a question of its own after each request without
    // an answer; it needs no EC, so it may be missing in the journal.
    [[nodiscard]] bool isAnswered();
    // Also known from notifications; empty for an unknown one.
    [[nodiscard]] QString accessory() const { return attached; }

    // The person has released the graphics box by its key, and it has not been taken off since.
    [[nodiscard]] bool isBoxReleased() const { return hasReleased; }

    // The notifications since the last call of this.
    void forgetNotifications() { arrived.clear(); }
    [[nodiscard]] const QList<tarn::Notification> &notifications() const { return arrived; }

private:
    void note(const tarn::Notification &notification);
    void noteState(tarn::Client::State state);

    const QString pipeName;
    const std::optional<std::chrono::milliseconds> limit;
    tarnRecording::RequestJournal &journal;
    tarn::Client client;
    QList<tarn::Notification> arrived;
    QString attached;
    int messages = 0;
    bool hasFallenSilent = false;
    bool hasReleased = false;
};

} // namespace tarnctl
