#pragma once

#include "gui/popup.h"

#include <windows.h>

#include <optional>

namespace tarnGui {

// Whatever is no yes has the number with which Escape and the window's cross answer.
[[nodiscard]] constexpr int buttonIdOf(const PopupButton &button)
{
    return button.answer == ExitCode::Yes ? IDYES : IDCANCEL;
}

// Nothing for the numbers of buttons that no popup has: there was no window.
[[nodiscard]] constexpr std::optional<ExitCode> answerOf(int buttonId)
{
    switch (buttonId) {
    case IDYES:
        return ExitCode::Yes;
    case IDNO:
    case IDOK:
    case IDCANCEL:
        return ExitCode::No;
    default:
        return std::nullopt;
    }
}

} // namespace tarnGui
