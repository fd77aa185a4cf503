#include "pipe_client.h"

#include "pipe_address.h"

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds connectTimeout(3000);
// The service writes a message in one piece; if its rest does not come within this time, it is lost.
constexpr milliseconds stallTimeout(2000);

} // namespace

PipeClient::PipeClient(QString name, QObject *parent)
    : QObject(parent)
    , pipeName(std::move(name))
{
    stallTimer.setSingleShot(true);
    connect(&socket, &QLocalSocket::readyRead, this, &PipeClient::readAvailable);
    connect(&socket, &QLocalSocket::disconnected, this, &PipeClient::handleDisconnected);
    connect(&socket, &QLocalSocket::bytesWritten, this, &PipeClient::handleWritten);
    connect(&stallTimer, &QTimer::timeout, this, &PipeClient::dropStalledDocument);
}

PipeClient::~PipeClient()
{
    close();
}

bool PipeClient::open()
{
    splitter.abandon();
    socket.connectToServer(pipeName);
    if (socket.waitForConnected(static_cast<int>(connectTimeout.count())))
        return true;
    openError = socket.error();
    openErrorText = socket.errorString();
    socket.abort();
    return false;
}

bool PipeClient::canEverOpen() const
{
    return !pipeAddress(pipeName).isTooLong();
}

QString PipeClient::openFailureText() const
{
    const PipeAddress address = pipeAddress(pipeName);
    if (address.isTooLong()) {
        return QStringLiteral(
            "No service can have this pipe: its full name has %1 %2, and it may have at most "
            "%3.\n%4\n%5")
            .arg(QString::number(address.length), address.unit, QString::number(address.longest),
                address.text, address.shortening);
    }
    if (openError == QLocalSocket::SocketAccessError) {
        return QStringLiteral("The pipe \"%1\" refuses this user.\nRun tarnctl as the user who started the "
                              "service, or as administrator.")
            .arg(pipeName);
    }
    const bool isAbsent =
        openError == QLocalSocket::ServerNotFoundError || openError == QLocalSocket::ConnectionRefusedError;
    const QString reason = isAbsent ? QString() : QStringLiteral(": %1").arg(openErrorText);
    return QStringLiteral("No service answers on the pipe \"%1\" (%2)%3.\nStart it first: ./run on the "
                          "simulated computer, or the service \"Tarn Service\" on Windows.")
        .arg(pipeName, address.text, reason);
}

bool PipeClient::isOpen() const
{
    return socket.state() == QLocalSocket::ConnectedState;
}

bool PipeClient::send(const QByteArray &bytes)
{
    const bool taken = socket.write(bytes) == bytes.size();
    socket.flush();
    return taken;
}

bool PipeClient::isDrained() const
{
    return socket.bytesToWrite() == 0;
}

void PipeClient::close()
{
    const QSignalBlocker quiet(socket);
    stallTimer.stop();
    splitter.abandon();
    socket.abort();
}

void PipeClient::readAvailable()
{
    const JsonSplitter::Harvest harvest = splitter.feed(socket.readAll());
    if (splitter.isInsideDocument())
        stallTimer.start(stallTimeout);
    else
        stallTimer.stop();
    if (!harvest.garbage.isEmpty())
        emit garbageReceived(harvest.garbage);
    for (const QByteArray &document : harvest.documents)
        emit documentReceived(document);
}

void PipeClient::dropStalledDocument()
{
    const QByteArray rest = splitter.abandon();
    if (!rest.isEmpty())
        emit garbageReceived(rest);
}

void PipeClient::handleDisconnected()
{
    readAvailable();
    stallTimer.stop();
    dropStalledDocument();
    emit serviceGone();
}

void PipeClient::handleWritten()
{
    if (isDrained())
        emit drained();
}

} // namespace tarnClient
