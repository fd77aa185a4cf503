#pragma once

#include <QString>

namespace tarnPipeServer {

// Queues a message that no client has asked for. Any thread. It goes out in its turn, to the client of then:
// what is queued while nobody is connected goes to the next one.
void notifyClient(const QString &command, const QString &data);

} // namespace tarnPipeServer
