#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace tarnGui {

// The window may come up and take the keyboard while the user types or clicks in another program. While a
// guard exists, the windows of its thread do not get input that was meant for that program: letters and
// digits without Alt, which buttons take for Alt and that letter; keys that were held down before; and keys
// and mouse buttons pressed within the window's first second. Other ways to close the window, such as
// WM_CLOSE, are left alone.
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
