#pragma once

#include "gui/popup.h"

#include <optional>

namespace tarnGui {

// Shows the popup as a message box, which every Windows has, and waits for the user's answer. Nothing if no
// window can be shown at all.
[[nodiscard]] std::optional<ExitCode> askByMessageBox(const Popup &popup);

} // namespace tarnGui
