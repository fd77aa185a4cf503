#pragma once

#include "device/recording/recording.h"
#include "device/recording/request_record.h"

#include <vector>

namespace tarnSimulator {

// The same steps, each request with the access after which it is to be asked so that the replay takes the
// same course: between the holds of the EC by the monitor a request would overtake the next hold, although it
// did not do so when it was recorded. Such a request is moved into that hold, whose end it then waits for.
[[nodiscard]] std::vector<tarnRecording::RequestRecord> placedSteps(
    const tarnRecording::Recording &recording, std::vector<tarnRecording::RequestRecord> steps);

} // namespace tarnSimulator
