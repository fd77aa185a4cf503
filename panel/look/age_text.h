#pragma once

#include <QString>

#include <chrono>

namespace tarnPanel {

// "just now", "12 s ago", "3 min ago", "2 h ago".
[[nodiscard]] QString ageText(std::chrono::milliseconds age);

} // namespace tarnPanel
