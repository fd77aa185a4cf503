#pragma once

#include <chrono>

namespace tarn {

// The waiting times of a client. Tests shorten them.
struct ClientTimes
{
    using Milliseconds = std::chrono::milliseconds;

    // Between two attempts to connect: it grows from the first to the second while all of them fail.
    Milliseconds firstRetry {1000};
    Milliseconds longestRetry {10000};
    // Between closing a connection and opening the next. The service sends nothing from the end of a
    // connection until the next one begins, so it must notice the end first, also on a busy computer.
    Milliseconds leavePause {800};
    // Until the next attempt when the service has fallen silent too often.
    Milliseconds takenOverPause {60000};
    // Losses that are further apart do not count together. Two clients that take the service from each other
    // notice it within a minute and the time limit of the question, each in turn.
    Milliseconds lossMemory {300000};
    // How long a request waits for a connection.
    Milliseconds connectionWait {10000};
    // Without a message for this time the client asks whether the service still talks to it; and not more
    // often.
    Milliseconds quietTime {60000};
    // A service that has just started says that nothing is attached before it has looked, and does not
    // announce what was attached already. So that answer is asked for once more.
    Milliseconds secondLook {5000};
    // For the client's own questions, which the service answers from memory; long, for a service that has
    // just started.
    Milliseconds questionLimit {10000};
    // After a request without an answer, so that the service does not read two requests as one, and reads
    // this one before it sees the end of the connection.
    Milliseconds unansweredPause {1000};
};

} // namespace tarn
