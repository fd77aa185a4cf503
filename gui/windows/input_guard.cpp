#include "input_guard.h"

#include <optional>

namespace tarnGui {

namespace {

constexpr LONG deafMs = 1000;
// In the parameter of a key's message: it was down before.
constexpr LPARAM wasDown = 1 << 30;

// When the first window appeared: a hook is given no context. In milliseconds of GetTickCount, which count
// the time of messages too.
std::optional<DWORD> shownAt;

// A window that is shown is told at once to paint itself.
void noteFirstWindow(const MSG &message)
{
    if (!shownAt && IsWindowVisible(GetAncestor(message.hwnd, GA_ROOT)))
        shownAt = GetTickCount();
}

bool isKeyPress(const MSG &message)
{
    return message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
}

bool isMousePress(const MSG &message)
{
    switch (message.message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_NCLBUTTONDOWN:
    case WM_NCLBUTTONDBLCLK:
        return true;
    default:
        return false;
    }
}

bool isLetterKey(WPARAM key)
{
    return (key >= L'A' && key <= L'Z') || (key >= L'0' && key <= L'9');
}

// With Alt they would be system keys. With Ctrl they are commands, such as the one that copies the text.
bool isTyped(const MSG &message)
{
    if (message.message == WM_CHAR)
        return message.wParam > L' ';
    return message.message == WM_KEYDOWN && isLetterKey(message.wParam) && GetKeyState(VK_CONTROL) >= 0;
}

bool isHeldKey(const MSG &message)
{
    return isKeyPress(message) && (message.lParam & wasDown) != 0;
}

// Signed, because the user may have pressed it before there was a window.
bool isTooEarly(const MSG &message)
{
    return (isKeyPress(message) || isMousePress(message))
        && (!shownAt || static_cast<LONG>(message.time - *shownAt) < deafMs);
}

LRESULT CALLBACK look(int code, WPARAM wide, LPARAM lengthy)
{
    if (code == HC_ACTION) {
        MSG &message = *reinterpret_cast<MSG *>(lengthy);
        noteFirstWindow(message);
        if (isTyped(message) || isHeldKey(message) || isTooEarly(message))
            message.message = WM_NULL;
    }
    return CallNextHookEx(nullptr, code, wide, lengthy);
}

} // namespace

InputGuard::InputGuard()
    : hook(SetWindowsHookExW(WH_GETMESSAGE, look, nullptr, GetCurrentThreadId()))
{ }

} // namespace tarnGui
