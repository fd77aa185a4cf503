#include "pipe_opening.h"

namespace tarn {

// The socket is a non-blocking one here.
std::optional<PipeFailure> beginOpening(QLocalSocket &socket, const QString &name)
{
    socket.connectToServer(name);
    if (socket.state() != QLocalSocket::UnconnectedState)
        return std::nullopt;
    switch (socket.error()) {
    case QLocalSocket::ServerNotFoundError:
    case QLocalSocket::ConnectionRefusedError:
        return PipeFailure {PipeFailure::Kind::NoService, socket.errorString()};
    case QLocalSocket::SocketAccessError:
        return PipeFailure {PipeFailure::Kind::AccessDenied, socket.errorString()};
    default:
        return PipeFailure {PipeFailure::Kind::Other, socket.errorString()};
    }
}

} // namespace tarn
