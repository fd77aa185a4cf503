#pragma once

#include <windows.h>

namespace tarnGui {

// The part of the screen with the mouse pointer, where the user is looking, that the task bar leaves free.
[[nodiscard]] RECT activeWorkArea();
// Puts the window above all others into the middle of that screen, without giving it the keyboard.
void centreOnTop(HWND window, SIZE size);

} // namespace tarnGui
