#pragma once

#include "gui/dialog_layout.h"
#include "gui/popup.h"
#include "owned_handles.h"

namespace tarnGui {

// Fonts and icons of one popup for one DPI; made anew when the window moves to a screen with another.
class DialogResources
{
public:
    DialogResources(const Popup &popup, int dpi);

    [[nodiscard]] HFONT textFont() const { return m_textFont.get(); }
    [[nodiscard]] HFONT titleFont() const { return m_titleFont.get(); }
    // The question mark or the warning sign beside the title.
    [[nodiscard]] HICON kindIcon() const { return m_kindIcon.get(); }
    [[nodiscard]] HICON taskBarIcon() const { return m_taskBarIcon.get(); }
    [[nodiscard]] HICON captionIcon() const { return m_captionIcon.get(); }

    // The sizes of the popup's texts as they are drawn in a window.
    [[nodiscard]] TextMeasures measure(HWND window, const Popup &popup, int dpi) const;

private:
    OwnedFont m_textFont;
    OwnedFont m_titleFont;
    OwnedIcon m_kindIcon;
    OwnedIcon m_taskBarIcon;
    OwnedIcon m_captionIcon;
};

} // namespace tarnGui
