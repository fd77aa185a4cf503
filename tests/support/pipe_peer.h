#pragma once

#include <QLocalSocket>

#include <functional>

namespace tarnTest {

// Serves this thread's events until the condition holds; false when it does not within the bound.
bool waitUntil(const std::function<bool()> &condition, int boundMs = 10000);

// A client at the other end of the pipe, on the test's own thread.
class PipePeer
{
public:
    PipePeer();

    [[nodiscard]] bool connectToService();
    void write(const QByteArray &bytes);
    void leave();
    // Everything that has arrived so far.
    [[nodiscard]] QByteArray received();
    // Waits until so many bytes in all have arrived.
    [[nodiscard]] bool waitForBytes(qsizetype count);
    // Waits until exactly this has arrived since the last call, and takes it.
    [[nodiscard]] QByteArray take(const QByteArray &expected);

    QLocalSocket socket;

private:
    QByteArray arrived;
};

} // namespace tarnTest
