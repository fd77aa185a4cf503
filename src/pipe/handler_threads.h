#pragma once

class QThreadPool;

namespace tarnPipeServer {

// Where the handler of a command runs. Whoever may wait for the EC may wait for good, so nobody else may have
// to wait for such a handler's thread: neither what needs no EC, nor what ends or begins such a wait.
enum class Lane {
    WaitsForEc, // the global pool; handlers beyond its threads wait in line, as they would at the EC
    LeavesMcuUpdateMode, // one thread: a leave waits for an enter that is on its way, and leaves for each
                         // other
    UpdatesEc, // one thread: EC updates take turns
    NeverWaits, // everything else, unknown and malformed requests included
};

// Makes room in the global thread pool, on which handlers wait for the EC.
void prepareHandlerThreads();

[[nodiscard]] QThreadPool *threadsOf(Lane lane);

// True when no handler runs or waits in any lane; looks for so long.
[[nodiscard]] bool waitForHandlers(int milliseconds);

} // namespace tarnPipeServer
