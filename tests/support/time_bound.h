#pragma once

#include <QtGlobal>

namespace tarnTest {

// From the request for a stop to the end of the process, whatever the service is doing.
inline constexpr int promptStopMs = 3000;

// A bound in milliseconds for an otherwise idle machine. On a machine that may be busy each thread waits for
// its turn, so ten times as much is allowed, which only a hang exceeds. scripts/load uses the bound itself.
[[nodiscard]] inline int allowedMs(int onQuietMachineMs)
{
    constexpr int othersTurns = 10;
    return qEnvironmentVariableIsSet("TARN_QUIET_MACHINE") ? onQuietMachineMs
                                                           : othersTurns * onQuietMachineMs;
}

} // namespace tarnTest
