#pragma once

#include "support/pipe_peer.h"

#include <QProcess>

namespace tarnTest {

// Waits in the event loop until a program that this thread has started has ended, as the service does on
// Windows: the own wait of QProcess ends its watch of the process at that moment, and Wine may then call the
// watch back on memory that has been freed. The tests are not linked with the service's waitForEnd().
inline bool waitForEnd(QProcess &process, int boundMs)
{
    return waitUntil([&process] { return process.state() == QProcess::NotRunning; }, boundMs);
}

} // namespace tarnTest
