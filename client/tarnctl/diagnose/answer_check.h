#pragma once

#include "checks.h"

#include <chrono>

namespace tarnctl {

// Connects to the service and asks it something that it answers without the EC, and something that needs the
// EC. An application that is connected receives nothing more until it connects again. Needs no running event
// loop.
[[nodiscard]] Findings checkAnswer(const Case &examined, std::chrono::milliseconds limit);

} // namespace tarnctl
