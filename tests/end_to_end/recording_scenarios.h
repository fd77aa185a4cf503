#pragma once

#include "end_to_end/recorded_service.h"

#include <span>

namespace tarnTest {

// Something that is done to a computer while its EC is recorded.
struct RecordingScenario
{
    const char *name;
    // False when it did not go as it should.
    bool (*play)(RecordedService &computer);
};

[[nodiscard]] std::span<const RecordingScenario> recordingScenarios();

// Starts a service, plays, and ends it; the recording. Empty when something went wrong.
[[nodiscard]] QString recordScenario(RecordedService &computer, const RecordingScenario &scenario);

} // namespace tarnTest
