#pragma once

#include "popup.h"

#include <span>
#include <string>

namespace tarnGui {

// The popup that the arguments behind the program's name ask for: one switch and nothing else. Null
// otherwise.
[[nodiscard]] const Popup *choosePopup(std::span<const wchar_t *const> arguments);
[[nodiscard]] std::wstring usageText();

} // namespace tarnGui
