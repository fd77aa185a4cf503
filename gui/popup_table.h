#pragma once

#include "popup.h"

#include <span>
#include <string>
#include <string_view>

namespace tarnGui {

// In the title bar and the task bar.
inline constexpr std::wstring_view windowTitle(L"Tarn external graphics");

[[nodiscard]] std::span<const Popup> popupTable();
// The popup of a switch; null for anything that is not exactly one of the switches.
[[nodiscard]] const Popup *findPopup(std::wstring_view commandSwitch);
// Its paragraphs as one text, with an empty line between them.
[[nodiscard]] std::wstring contentOf(const Popup &popup);

} // namespace tarnGui
