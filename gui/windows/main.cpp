#include "error_output.h"
#include "gui/command_line.h"
#include "input_guard.h"
#include "message_box.h"
#include "task_dialog.h"

#include <windows.h>

#include <cstdlib>

int WINAPI wWinMain(HINSTANCE /*module*/, HINSTANCE /*previous*/, PWSTR /*arguments*/, int /*show*/)
{
    using namespace tarnGui;
    const std::span<const wchar_t *const> words(__wargv, static_cast<std::size_t>(__argc));
    const Popup *const popup = choosePopup(words.empty() ? words : words.subspan(1));
    if (!popup) {
        writeError(usageText());
        return static_cast<int>(ExitCode::Usage);
    }
    const InputGuard guard;
    std::optional<ExitCode> answer = askByTaskDialog(*popup);
    if (!answer)
        answer = askByMessageBox(*popup);
    return static_cast<int>(answer.value_or(ExitCode::NoWindow));
}
