#include "message_box.h"

#include "button_id.h"
#include "gui/popup_table.h"

#include <windows.h>

namespace tarnGui {

namespace {

// The second of "Yes" and "No" is the default. Such a box has no close button and ignores Escape.
constexpr UINT questionStyle = MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION;
constexpr UINT noticeStyle = MB_OK | MB_ICONWARNING;

} // namespace

std::optional<ExitCode> askByMessageBox(const Popup &popup)
{
    const std::wstring text = std::wstring(popup.title) + L"\n\n" + contentOf(popup);
    const UINT style = popup.kind == PopupKind::Question ? questionStyle : noticeStyle;
    return answerOf(
        MessageBoxW(nullptr, text.c_str(), windowTitle.data(), style | MB_TOPMOST | MB_SETFOREGROUND));
}

} // namespace tarnGui
