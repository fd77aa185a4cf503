#include "screen_place.h"

namespace tarnGui {

RECT activeWorkArea()
{
    POINT pointer {};
    GetCursorPos(&pointer);
    MONITORINFO screen {};
    screen.cbSize = sizeof screen;
    GetMonitorInfoW(MonitorFromPoint(pointer, MONITOR_DEFAULTTOPRIMARY), &screen);
    return screen.rcWork;
}

void centreOnTop(HWND window, SIZE size)
{
    const RECT screen = activeWorkArea();
    const int left = screen.left + (screen.right - screen.left - size.cx) / 2;
    const int top = screen.top + (screen.bottom - screen.top - size.cy) / 2;
    SetWindowPos(window, HWND_TOPMOST, left, top, size.cx, size.cy, SWP_NOACTIVATE);
}

} // namespace tarnGui
