#pragma once

#include "gui/popup.h"

#include <optional>

namespace tarnGui {

// Shows the popup as a task dialog of the common controls and waits for the user's answer, without a time
// limit. Nothing where there are no task dialogs: they came with version 6, which the program's manifest asks
// for.
[[nodiscard]] std::optional<ExitCode> askByTaskDialog(const Popup &popup);

} // namespace tarnGui
