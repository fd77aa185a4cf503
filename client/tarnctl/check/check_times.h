#pragma once

#include "client/client_times.h"

#include <chrono>

namespace tarnctl {

// The waiting times of a check. Tests shorten them.
struct CheckTimes
{
    using Milliseconds = std::chrono::milliseconds;

    // After which an answer counts as late. On the simulated computer an answer takes 0.6 to 1.1 s: half a
    // second of pause before each message, the monitor's turn, and 25 ms for each of up to 23 accesses.
    // Timers of 16 ms instead of 5 ms make that less than 2 s. A single access that the EC does not answer
    // takes more than 5 s.
    Milliseconds late {5000};
    // By which each message that comes before the answer delays it.
    Milliseconds latePerMessage {600};
    // For what the service has to notice first: its monitor looks three times a second, and announces one
    // value every half second.
    Milliseconds settling {10000};
    // Between two answers that must agree: by then the service has read and announced each of its values.
    Milliseconds settled {3000};
    // For somebody who plugs something in.
    Milliseconds hands {180000};
    // Until a recording has grown: the monitor's looks are written ten times a second, but on an EC that does
    // not answer they come several seconds apart.
    Milliseconds growth {8000};
    // Until the recording has gone on beyond the last request.
    Milliseconds coverage {8000};
    tarn::ClientTimes client {};
};

} // namespace tarnctl
