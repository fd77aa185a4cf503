#pragma once

#include "pipe_opening.h"

#include "tarn/client.h"

namespace tarn {

// What an application is told of a failure.
[[nodiscard]] Client::Problem problemOf(PipeFailure::Kind kind);

} // namespace tarn
