#include "platform/leftover_socket.h"

#include <QLocalServer>
#include <QLocalSocket>

namespace tarnPlatform {

void removeLeftoverSocket(const QString &pipeName)
{
    QLocalSocket probe;
    probe.connectToServer(pipeName);
    if (probe.error() == QLocalSocket::ConnectionRefusedError)
        QLocalServer::removeServer(pipeName);
}

} // namespace tarnPlatform
