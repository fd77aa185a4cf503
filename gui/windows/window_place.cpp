#include "window_place.h"

namespace tarnGui {

namespace {

constexpr UINT flashCount = 5;

// The screen with the mouse pointer, without the task bar.
RECT activeWorkArea()
{
    POINT pointer {};
    GetCursorPos(&pointer);
    MONITORINFO screen {};
    screen.cbSize = sizeof screen;
    GetMonitorInfoW(MonitorFromPoint(pointer, MONITOR_DEFAULTTOPRIMARY), &screen);
    return screen.rcWork;
}

void moveTo(HWND window, LONG left, LONG top)
{
    SetWindowPos(window, HWND_TOPMOST, left, top, 0, 0, SWP_NOSIZE | SWP_NOACTIVATE);
}

} // namespace

void placeOnTop(HWND window)
{
    SetWindowLongPtrW(window, GWL_EXSTYLE, GetWindowLongPtrW(window, GWL_EXSTYLE) | WS_EX_APPWINDOW);
    const RECT screen = activeWorkArea();
    // First into the corner, because a screen of another scale changes the size of a window moved to it.
    moveTo(window, screen.left, screen.top);
    RECT place {};
    GetWindowRect(window, &place);
    moveTo(window, (screen.left + screen.right - (place.right - place.left)) / 2,
        (screen.top + screen.bottom - (place.bottom - place.top)) / 2);
}

void showToUser(HWND window)
{
    ShowWindow(window, SW_SHOWNORMAL);
    if (!SetForegroundWindow(window)) {
        FLASHWINFO flash {sizeof flash, window, FLASHW_ALL | FLASHW_TIMERNOFG, flashCount, 0};
        FlashWindowEx(&flash);
    }
}

} // namespace tarnGui
