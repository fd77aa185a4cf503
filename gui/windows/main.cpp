#include "dialog_window.h"
#include "error_output.h"
#include "gui/command_line.h"

#include <windows.h>

#include <cstdlib>

int WINAPI wWinMain(HINSTANCE /*module*/, HINSTANCE /*previous*/, PWSTR /*arguments*/, int /*show*/)
{
    const std::span<const wchar_t *const> words(__wargv, static_cast<std::size_t>(__argc));
    const tarnGui::Popup *const popup = tarnGui::choosePopup(words.empty() ? words : words.subspan(1));
    if (!popup) {
        tarnGui::writeError(tarnGui::usageText());
        return static_cast<int>(tarnGui::ExitCode::Usage);
    }
    tarnGui::DialogWindow window(*popup);
    return static_cast<int>(window.ask());
}
