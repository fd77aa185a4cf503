#pragma once

#include "gui/popup.h"

#include <windows.h>

#include <optional>

namespace tarnGui {

// Every button but Yes has the number that Escape and the window's close button give.
[[nodiscard]] constexpr int buttonIdOf(const PopupButton &button)
{
    return button.answer == ExitCode::Yes ? IDYES : IDCANCEL;
}

// Nothing for any other number: no window was shown.
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
