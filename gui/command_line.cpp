#include "command_line.h"

#include "popup_table.h"

#include <algorithm>

namespace tarnGui {

const Popup *choosePopup(std::span<const wchar_t *const> arguments)
{
    return arguments.size() == 1 ? findPopup(arguments.front()) : nullptr;
}

std::wstring usageText()
{
    std::size_t switchWidth = 0;
    for (const Popup &popup : popupTable())
        switchWidth = std::max(switchWidth, popup.commandSwitch.size());
    std::wstring text = L"Usage: TarnServiceGui SWITCH\n\n";
    for (const Popup &popup : popupTable()) {
        text += L"  ";
        text += popup.commandSwitch;
        text.append(switchWidth - popup.commandSwitch.size() + 2, L' ');
        text += popup.summary;
        text += L'\n';
    }
    text += L"\nExit codes: 1 yes, 0 no or a notice read, 2 wrong usage, 3 no window could be shown.\n";
    return text;
}

} // namespace tarnGui
