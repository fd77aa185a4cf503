#include "input_guard.h"

#include <optional>

namespace tarnGui {

namespace {

constexpr LONG ignoreInputMs = 1000;
// Bit in the lParam of a key's message: the key was down before.
constexpr LPARAM wasDown = 1 << 30;

// When the first window appeared, in milliseconds of GetTickCount, as the times of messages. Global, because
// a hook gets no context.
std::optional<DWORD> shownAt;

// A window gets a paint message as soon as it is shown, so the hook notices it in time.
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

// Letters with Alt are system keys and pass. So do letters with Ctrl, which are commands such as Ctrl+C.
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

// A signed difference, because the message may be older than the window.
bool isTooEarly(const MSG &message)
{
    return (isKeyPress(message) || isMousePress(message))
        && (!shownAt || static_cast<LONG>(message.time - *shownAt) < ignoreInputMs);
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
