#pragma once

#include <QByteArray>

class QThreadPool;

namespace tarnPipeServer {

// Makes room in the global thread pool, on which handlers run and wait for the EC.
void prepareHandlerThreads();

// The pool for the handler of this request: the global one. When that is full of handlers that wait for the
// EC, what needs no EC or lets go of it gets a thread elsewhere; it must never wait behind them.
[[nodiscard]] QThreadPool *handlerThreadsFor(const QByteArray &request);

// True when no handler runs or waits; looks for so long.
[[nodiscard]] bool waitForHandlers(int milliseconds);

} // namespace tarnPipeServer
