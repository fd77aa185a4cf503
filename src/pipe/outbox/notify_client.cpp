#include "pipe/outbox/notify_client.h"

#include "pipe/outbox/message_format.h"
#include "pipe/outbox/send_queue_thread.h"

namespace tarnPipeServer {

void notifyClient(const QString &command, const QString &data)
{
    SendQueueThread::instance()->enqueueMessage(notificationText(command, data));
}

} // namespace tarnPipeServer
