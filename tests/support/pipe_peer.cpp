#include "support/pipe_peer.h"

#include "support/seen_texts.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QSysInfo>
#include <QTimer>

namespace tarnTest {

namespace {

// Pause between two tests of a condition that no event announces. For timers below 20 ms Qt uses Windows
// multimedia timers, which at this rate leave no time for the events of sockets.
int lookIntervalMs()
{
    static const bool onWindows = QSysInfo::kernelType() == QStringLiteral("winnt");
    return onWindows ? 25 : 2;
}

} // namespace

bool waitUntil(const std::function<bool()> &condition, int boundMs)
{
    const QDeadlineTimer deadline(boundMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QTimer wakeUp;
        wakeUp.start(lookIntervalMs());
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

PipePeer::PipePeer()
{
    QObject::connect(&socket, &QLocalSocket::readyRead, &socket, [this] { arrived += socket.readAll(); });
}

bool PipePeer::connectToService()
{
    const QString pipe = QStringLiteral("tarnPipe");
    socket.connectToServer(pipe);
    const bool connected = waitUntil([this] { return socket.state() == QLocalSocket::ConnectedState; });
    if (connected)
        noteSeen("name", pipe);
    return connected;
}

void PipePeer::write(const QByteArray &bytes)
{
    socket.write(bytes);
    socket.flush();
}

void PipePeer::leave()
{
    socket.disconnectFromServer();
}

QByteArray PipePeer::received()
{
    return arrived;
}

bool PipePeer::waitForBytes(qsizetype count)
{
    return waitUntil([this, count] { return arrived.size() >= count; });
}

QByteArray PipePeer::take(const QByteArray &expected)
{
    // A wrong answer of another length shows as well, after a moment for it to arrive in full.
    waitUntil([&] { return arrived.size() >= expected.size(); }, 5000);
    return std::exchange(arrived, {});
}

} // namespace tarnTest
