#pragma once

#include "panel/look/theme.h"

#include <tarn/firmware_result.h>

namespace tarnPanel {

// The end of an update in words: what happened, whether the device may have changed, and what to do.
[[nodiscard]] QString resultText(const tarn::FirmwareResult &result);
[[nodiscard]] Tone toneOf(tarn::FirmwareOutcome outcome);

} // namespace tarnPanel
