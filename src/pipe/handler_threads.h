#pragma once

class QThreadPool;

namespace tarnPipeServer {

// The threads on which the handler of a command runs. A handler that waits for the EC may wait for ever.
// Requests that need no EC, and those that take the EC for an update or release it, must therefore never
// wait for the thread of such a handler.
enum class Lane {
    WaitsForEc, // the global pool; when all its threads are busy, handlers queue, as for the EC
    LeavesMcuUpdateMode, // one thread: a leave waits for an enter that has begun, and leaves for each
                         // other
    UpdatesEc, // one thread: EC updates take turns
    NeverWaits, // everything else, unknown and malformed requests included
};

// Enlarges the global thread pool, on which handlers wait for the EC.
void prepareHandlerThreads();

[[nodiscard]] QThreadPool *threadsOf(Lane lane);

// Waits for at most so long; true when no handler runs or is queued in any lane.
[[nodiscard]] bool waitForHandlers(int milliseconds);

} // namespace tarnPipeServer
