#pragma once

#include "device/recording/recording.h"
#include "simulator/recording/channel_decoder.h"

#include <vector>

namespace tarnSimulator {

// All whole register accesses of a recording.
[[nodiscard]] std::vector<DecodedAccess> decodedAccesses(const tarnRecording::Recording &recording);

} // namespace tarnSimulator
