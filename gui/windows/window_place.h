#pragma once

#include <windows.h>

namespace tarnGui {

// Puts a window that is not shown yet above all others, into the task bar, and into the middle of the screen
// with the mouse pointer, where the user is looking.
void placeOnTop(HWND window);
// Shows it with the keyboard focus; where Windows leaves the focus with another program, it flashes instead.
void showToUser(HWND window);

} // namespace tarnGui
