#include "pipe_connection.h"

#include "pipe_address.h"

#include <utility>

namespace tarn {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds openingLimit(3000);
// A pipe is busy while the service prepares it for the next client.
constexpr milliseconds busyPause(50);
// The service writes a message in one piece; if its rest does not come within this time, it is lost.
constexpr milliseconds restLimit(2000);
// What the socket reads ahead. A service that floods its client is slowed down instead of filling the memory.
constexpr qint64 readAhead = 1 << 20; // bytes

} // namespace

PipeConnection::PipeConnection(QString name, QObject *parent)
    : QObject(parent)
    , pipeName(std::move(name))
    , socket(this)
    , stallTimer(this)
    , openingTimer(this)
    , busyTimer(this)
{
    stallTimer.setSingleShot(true);
    openingTimer.setSingleShot(true);
    busyTimer.setSingleShot(true);
    socket.setReadBufferSize(readAhead);
    connect(&socket, &QLocalSocket::connected, this, [this] { later(&PipeConnection::handleConnected); });
    connect(&socket, &QLocalSocket::errorOccurred, this, [this] { later(&PipeConnection::handleError); });
    connect(&socket, &QLocalSocket::readyRead, this, &PipeConnection::readAvailable);
    connect(&socket, &QLocalSocket::disconnected, this, [this] {
        readAvailable();
        later(&PipeConnection::handleDisconnected);
    });
    connect(&socket, &QLocalSocket::bytesWritten, this, [this] { later(&PipeConnection::handleWritten); });
    connect(&stallTimer, &QTimer::timeout, this, &PipeConnection::dropStalledDocument);
    connect(&busyTimer, &QTimer::timeout, this, &PipeConnection::tryOpening);
    connect(&openingTimer, &QTimer::timeout, this, [this] {
        failOpening({PipeFailure::Kind::Other, QStringLiteral("The pipe stays busy.")});
    });
}

PipeConnection::~PipeConnection()
{
    close();
}

void PipeConnection::later(void (PipeConnection::*function)())
{
    QMetaObject::invokeMethod(
        this,
        [this, function, number = connectionNumber] {
            if (number == connectionNumber)
                (this->*function)();
        },
        Qt::QueuedConnection);
}

void PipeConnection::open()
{
    close();
    if (pipeAddress(pipeName).isTooLong()) {
        emit openFailed({PipeFailure::Kind::NameTooLong});
        return;
    }
    openingTimer.start(openingLimit);
    tryOpening();
}

// The socket's own signals are looked at only where it goes on connecting by itself.
void PipeConnection::tryOpening()
{
    const std::optional<PipeFailure> failure = beginOpening(socket, pipeName);
    if (!failure) {
        isConnecting = true;
        if (socket.state() == QLocalSocket::ConnectedState)
            handleConnected();
        return;
    }
    if (failure->kind == PipeFailure::Kind::Busy)
        busyTimer.start(busyPause);
    else
        failOpening(*failure);
}

void PipeConnection::handleConnected()
{
    if (!isConnecting)
        return;
    isConnecting = false;
    isInUse = true;
    openingTimer.stop();
    emit opened();
}

void PipeConnection::handleError()
{
    if (isConnecting)
        failOpening({PipeFailure::Kind::Other, socket.errorString()});
}

void PipeConnection::failOpening(const PipeFailure &failure)
{
    close();
    emit openFailed(failure);
}

bool PipeConnection::isOpen() const
{
    return isInUse;
}

bool PipeConnection::isOpening() const
{
    return openingTimer.isActive();
}

bool PipeConnection::send(const QByteArray &bytes)
{
    const bool taken = isInUse && socket.write(bytes) == bytes.size();
    socket.flush();
    return taken;
}

bool PipeConnection::isDrained() const
{
    return socket.bytesToWrite() == 0;
}

void PipeConnection::close()
{
    const QSignalBlocker quiet(socket);
    isConnecting = false;
    isInUse = false;
    ++connectionNumber;
    stallTimer.stop();
    openingTimer.stop();
    busyTimer.stop();
    splitter.abandon();
    documents.clear();
    garbage.clear();
    socket.abort();
}

// At once, because a socket that has been disconnected may keep nothing for later.
void PipeConnection::readAvailable()
{
    if (socket.bytesAvailable() == 0)
        return;
    const JsonSplitter::Harvest harvest = splitter.feed(socket.readAll());
    if (splitter.isInsideDocument())
        stallTimer.start(restLimit);
    else
        stallTimer.stop();
    documents += harvest.documents;
    garbage += harvest.garbage;
    later(&PipeConnection::deliver);
}

// One message each time, because a slot may run an event loop, which then delivers the next.
void PipeConnection::deliver()
{
    if (!garbage.isEmpty()) {
        later(&PipeConnection::deliver);
        emit garbageReceived(std::exchange(garbage, {}));
        return;
    }
    if (documents.isEmpty())
        return;
    const QByteArray next = documents.takeFirst();
    if (!documents.isEmpty())
        later(&PipeConnection::deliver);
    emit documentReceived(next);
}

void PipeConnection::dropStalledDocument()
{
    stallTimer.stop();
    const QByteArray rest = splitter.abandon();
    if (!rest.isEmpty())
        emit garbageReceived(rest);
}

void PipeConnection::handleDisconnected()
{
    const int number = connectionNumber;
    while (number == connectionNumber && !(garbage.isEmpty() && documents.isEmpty()))
        deliver();
    if (number != connectionNumber)
        return;
    dropStalledDocument();
    if (number != connectionNumber)
        return;
    close();
    emit serviceGone();
}

void PipeConnection::handleWritten()
{
    if (isDrained())
        emit drained();
}

} // namespace tarn
