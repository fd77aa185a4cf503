#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace tarnGui {

// The window may come up while somebody is typing or clicking elsewhere, and then has the keyboard. While
// this lives, the windows of its thread never see what was meant for another program: bare letters and
// digits, which buttons take for Alt and that letter; keys that were held down already; and whatever is
// pressed within the window's first second. Other ways to close the window, such as WM_CLOSE, are left alone.
class InputGuard
{
public:
    InputGuard();

private:
    struct HookRemover
    {
        void operator()(HHOOK hook) const { UnhookWindowsHookEx(hook); }
    };
    std::unique_ptr<std::remove_pointer_t<HHOOK>, HookRemover> hook;
};

} // namespace tarnGui
