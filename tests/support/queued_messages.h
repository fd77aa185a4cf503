#pragma once

#include "pipe/outbox/message_format.h"
#include "pipe/outbox/send_queue_thread.h"
#include "support/seen_texts.h"

#include <QStringList>

namespace tarnTest {

inline QString notification(const char *command, const QString &data)
{
    return tarnPipeServer::notificationText(QString::fromLatin1(command), data);
}

// Everything that waits for a client, oldest first.
inline QStringList queuedMessages()
{
    const QStringList messages = tarnPipeServer::SendQueueThread::instance()->waitingMessages();
    for (const QString &message : messages)
        noteSeen("message", message);
    return messages;
}

// What has been queued since the mark was made.
class QueueMark
{
public:
    QueueMark()
        : from(queuedMessages().size())
    { }
    [[nodiscard]] QStringList added() const { return queuedMessages().mid(from); }

private:
    qsizetype from;
};

} // namespace tarnTest
