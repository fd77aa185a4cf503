#pragma once

#include <QString>

namespace tarnPipeServer {

// Queues a message that no client has asked for. Any thread. It goes to the client that is connected when its
// turn comes; while no client is connected it stays queued for the next one.
void notifyClient(const QString &command, const QString &data);

} // namespace tarnPipeServer
