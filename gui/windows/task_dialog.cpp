#include "task_dialog.h"

#include "button_id.h"
#include "gui/popup_table.h"
#include "resource.h"
#include "window_place.h"

#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <type_traits>
#include <vector>

namespace tarnGui {

namespace {

// In dialog units, quarters of a letter, so it grows with the font. With the width that Windows would choose,
// some lines have only one word.
constexpr UINT widthDialogUnits = 280;

using TaskDialogFunction = decltype(&TaskDialogIndirect);

// Looked up by name, because version 5 of the library has no such function and a program that imports it
// would not start there.
TaskDialogFunction taskDialogFunction()
{
    const HMODULE controls = LoadLibraryW(L"comctl32.dll");
    return controls ? reinterpret_cast<TaskDialogFunction>(
               reinterpret_cast<void *>(GetProcAddress(controls, "TaskDialogIndirect")))
                    : nullptr;
}

struct IconDeleter
{
    void operator()(HICON icon) const { DestroyIcon(icon); }
};
using OwnedIcon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter>;

OwnedIcon loadProgramIcon(int metric)
{
    const int size = GetSystemMetrics(metric);
    return OwnedIcon(static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr),
        MAKEINTRESOURCEW(TARN_PROGRAM_ICON), IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
}

// They must outlive the window.
struct WindowIcons
{
    OwnedIcon taskBar = loadProgramIcon(SM_CXICON);
    OwnedIcon titleBar = loadProgramIcon(SM_CXSMICON);
};

HRESULT CALLBACK receive(
    HWND window, UINT notification, WPARAM /*wide*/, LPARAM /*lengthy*/, LONG_PTR reference)
{
    // Created, but not on the screen yet.
    if (notification == TDN_CREATED) {
        const auto *const icons = reinterpret_cast<const WindowIcons *>(reference);
        SendMessageW(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icons->taskBar.get()));
        SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icons->titleBar.get()));
        placeOnTop(window);
        showToUser(window);
    }
    return S_OK;
}

std::vector<TASKDIALOG_BUTTON> buttonsOf(const Popup &popup)
{
    std::vector<TASKDIALOG_BUTTON> buttons;
    for (const PopupButton &button : popup.buttons)
        buttons.push_back({buttonIdOf(button), button.label.data()});
    return buttons;
}

} // namespace

std::optional<ExitCode> askByTaskDialog(const Popup &popup)
{
    const TaskDialogFunction showTaskDialog = taskDialogFunction();
    if (!showTaskDialog)
        return std::nullopt;
    const WindowIcons icons;
    const std::wstring content = contentOf(popup);
    const std::vector<TASKDIALOG_BUTTON> buttons = buttonsOf(popup);
    TASKDIALOGCONFIG dialog {};
    dialog.cbSize = sizeof dialog;
    dialog.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION;
    dialog.pszWindowTitle = windowTitle.data();
    dialog.pszMainInstruction = popup.title.data();
    dialog.pszContent = content.c_str();
    if (popup.kind == PopupKind::Question) {
        // A task dialog has no question mark among its own icons.
        dialog.dwFlags |= TDF_USE_HICON_MAIN;
        dialog.hMainIcon = LoadIconW(nullptr, IDI_QUESTION);
    } else {
        dialog.pszMainIcon = TD_WARNING_ICON;
    }
    dialog.cButtons = static_cast<UINT>(buttons.size());
    dialog.pButtons = buttons.data();
    dialog.nDefaultButton = buttonIdOf(popup.buttons[popup.defaultButton]);
    dialog.cxWidth = widthDialogUnits;
    dialog.pfCallback = receive;
    dialog.lpCallbackData = reinterpret_cast<LONG_PTR>(&icons);
    int buttonId = 0;
    if (FAILED(showTaskDialog(&dialog, &buttonId, nullptr, nullptr)))
        return std::nullopt;
    return answerOf(buttonId);
}

} // namespace tarnGui
