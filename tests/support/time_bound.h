#pragma once

#include <QtGlobal>

namespace tarnTest {

// From the request for a stop to the end of the process, whatever the service is doing.
inline constexpr int promptStopMs = 3000;

// What has to be over after so many milliseconds on a machine that does nothing else. Where that is not
// known, only a hang counts: a busy machine lets each thread wait for its turn. scripts/load measures with
// the bound itself.
[[nodiscard]] inline int allowedMs(int onQuietMachineMs)
{
    constexpr int othersTurns = 10;
    return qEnvironmentVariableIsSet("TARN_QUIET_MACHINE") ? onQuietMachineMs
                                                           : othersTurns * onQuietMachineMs;
}

} // namespace tarnTest
