#pragma once

#include "client_times.h"

namespace tarn {

// When to connect again. Knows no clock of its own.
class ReconnectPolicy
{
public:
    using Milliseconds = std::chrono::milliseconds;

    explicit ReconnectPolicy(const ClientTimes &clientTimes);

    // The application has asked for a connection.
    void forget();
    // The service has answered on the connection.
    void noteAnswer();
    // How long to wait after an attempt that failed, and after the service has closed the connection. Nobody
    // has taken over a service that is not there.
    [[nodiscard]] Milliseconds pauseAfterFailure();
    // How long to wait after the service has fallen silent, at this time of a steady clock.
    [[nodiscard]] Milliseconds pauseAfterSilence(Milliseconds now);
    // True from the third silence in a row on, until the application asks, an answer comes or the service
    // goes.
    [[nodiscard]] bool isTakenOver() const;

private:
    const ClientTimes times;
    Milliseconds nextRetry;
    Milliseconds lastSilence {0};
    int silences = 0;
    bool takenOver = false;
};

} // namespace tarn
