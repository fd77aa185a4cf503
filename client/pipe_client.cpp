#include "pipe_client.h"

#include "pipe_address.h"

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds connectTimeout(3000);
// The service writes a message in one piece; the rest of one that pauses longer than this is lost.
constexpr milliseconds stallTimeout(2000);

} // namespace

PipeClient::PipeClient(QString pipeName, QObject *parent)
    : QObject(parent)
    , m_pipeName(std::move(pipeName))
{
    m_stallTimer.setSingleShot(true);
    connect(&m_socket, &QLocalSocket::readyRead, this, &PipeClient::readAvailable);
    connect(&m_socket, &QLocalSocket::disconnected, this, &PipeClient::handleDisconnected);
    connect(&m_socket, &QLocalSocket::bytesWritten, this, &PipeClient::handleWritten);
    connect(&m_stallTimer, &QTimer::timeout, this, &PipeClient::dropStalledDocument);
}

PipeClient::~PipeClient()
{
    close();
}

bool PipeClient::open()
{
    m_splitter.abandon();
    m_socket.connectToServer(m_pipeName);
    if (m_socket.waitForConnected(static_cast<int>(connectTimeout.count())))
        return true;
    m_openError = m_socket.error();
    m_openErrorText = m_socket.errorString();
    m_socket.abort();
    return false;
}

bool PipeClient::canEverOpen() const
{
    return !pipeAddress(m_pipeName).isTooLong();
}

QString PipeClient::openFailureText() const
{
    const PipeAddress address = pipeAddress(m_pipeName);
    if (address.isTooLong()) {
        return QStringLiteral(
            "No service can have this pipe: its full name has %1 %2, and it may have at most "
            "%3.\n%4\n%5")
            .arg(QString::number(address.length), address.unit, QString::number(address.longest),
                address.text, address.shortening);
    }
    if (m_openError == QLocalSocket::SocketAccessError) {
        return QStringLiteral("The pipe \"%1\" refuses this user.\nRun tarnctl as the user who started the "
                              "service, or as administrator.")
            .arg(m_pipeName);
    }
    const bool isAbsent = m_openError == QLocalSocket::ServerNotFoundError
        || m_openError == QLocalSocket::ConnectionRefusedError;
    const QString reason = isAbsent ? QString() : QStringLiteral(": %1").arg(m_openErrorText);
    return QStringLiteral("No service answers on the pipe \"%1\" (%2)%3.\nStart it first: ./run on the "
                          "simulated computer, or the service \"Tarn Service\" on Windows.")
        .arg(m_pipeName, address.text, reason);
}

bool PipeClient::isOpen() const
{
    return m_socket.state() == QLocalSocket::ConnectedState;
}

bool PipeClient::send(const QByteArray &bytes)
{
    const bool taken = m_socket.write(bytes) == bytes.size();
    m_socket.flush();
    return taken;
}

bool PipeClient::isDrained() const
{
    return m_socket.bytesToWrite() == 0;
}

void PipeClient::close()
{
    const QSignalBlocker quiet(m_socket);
    m_stallTimer.stop();
    m_splitter.abandon();
    m_socket.abort();
}

void PipeClient::readAvailable()
{
    const JsonSplitter::Harvest harvest = m_splitter.feed(m_socket.readAll());
    if (m_splitter.isInsideDocument())
        m_stallTimer.start(stallTimeout);
    else
        m_stallTimer.stop();
    if (!harvest.garbage.isEmpty())
        emit garbageReceived(harvest.garbage);
    for (const QByteArray &document : harvest.documents)
        emit documentReceived(document);
}

void PipeClient::dropStalledDocument()
{
    const QByteArray rest = m_splitter.abandon();
    if (!rest.isEmpty())
        emit garbageReceived(rest);
}

void PipeClient::handleDisconnected()
{
    readAvailable();
    m_stallTimer.stop();
    dropStalledDocument();
    emit serviceGone();
}

void PipeClient::handleWritten()
{
    if (isDrained())
        emit drained();
}

} // namespace tarnClient
