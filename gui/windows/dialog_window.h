#pragma once

#include "dialog_resources.h"
#include "gui/popup.h"

#include <memory>
#include <vector>

namespace tarnGui {

// A popup on the screen. A window of our own in the look of a task dialog, not TaskDialogIndirect: that one
// is neither topmost nor in the task bar unless somebody meddles with its window, takes a bare "y" for a yes,
// and Wine, where it is tested, draws only the rough of it.
class DialogWindow
{
public:
    explicit DialogWindow(const Popup &popup);
    ~DialogWindow();
    DialogWindow(const DialogWindow &) = delete;
    DialogWindow &operator=(const DialogWindow &) = delete;

    // Shows the popup and waits for the user's answer, for as long as it takes.
    [[nodiscard]] ExitCode ask();

private:
    static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM wide, LPARAM lengthy);
    LRESULT handle(UINT message, WPARAM wide, LPARAM lengthy);

    [[nodiscard]] bool create();
    void createControls();
    [[nodiscard]] HWND createControl(
        const wchar_t *windowClass, std::wstring_view text, DWORD style, std::size_t controlId);
    void show();
    void applyDpi(int dpi);
    void placeControls();
    [[nodiscard]] SIZE windowSize() const;

    void paintBackground(HDC context) const;
    void paintIcon() const;
    void handleCommand(std::size_t controlId);
    void rememberFocus(bool active);
    void finish(ExitCode answer);

    const Popup &m_popup;
    HWND m_window = nullptr;
    HWND m_title = nullptr;
    std::vector<HWND> m_paragraphs;
    std::vector<HWND> m_buttons;
    HWND m_focus = nullptr;
    std::size_t m_defaultId = 0;
    int m_dpi = dipsPerInch;
    std::unique_ptr<DialogResources> m_resources;
    DialogLayout m_layout {};
};

} // namespace tarnGui
