#include "dialog_resources.h"

#include "resource.h"

#include <commctrl.h>

namespace tarnGui {

namespace {

// The window's device context with a font in it; both go back at the end.
class FontContext
{
public:
    FontContext(HWND window, HFONT font)
        : m_window(window)
        , m_context(GetDC(window))
        , m_previous(SelectObject(m_context, font))
    { }
    ~FontContext()
    {
        SelectObject(m_context, m_previous);
        ReleaseDC(m_window, m_context);
    }
    FontContext(const FontContext &) = delete;
    FontContext &operator=(const FontContext &) = delete;

    [[nodiscard]] SIZE textSize(std::wstring_view text, int width, UINT format) const
    {
        RECT box {0, 0, width, 0};
        DrawTextW(m_context, text.data(), static_cast<int>(text.size()), &box, format | DT_CALCRECT);
        return {box.right - box.left, box.bottom - box.top};
    }

private:
    HWND m_window;
    HDC m_context;
    HGDIOBJ m_previous;
};

// As a static control with SS_LEFT and SS_NOPREFIX wraps its text.
constexpr UINT wrappedText = DT_LEFT | DT_WORDBREAK | DT_EXPANDTABS | DT_NOPREFIX;

LOGFONTW messageFont(int dpi)
{
    NONCLIENTMETRICSW metrics {};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoForDpi(
            SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, static_cast<UINT>(dpi))) {
        return metrics.lfMessageFont;
    }
    LOGFONTW plain {};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof plain, &plain);
    return plain;
}

OwnedFont makeTextFont(int dpi)
{
    const LOGFONTW font = messageFont(dpi);
    return OwnedFont(CreateFontIndirectW(&font));
}

// 12 points where the message font has 9.
OwnedFont makeTitleFont(int dpi)
{
    LOGFONTW font = messageFont(dpi);
    font.lfHeight = MulDiv(font.lfHeight, 4, 3);
    font.lfWeight = FW_SEMIBOLD;
    return OwnedFont(CreateFontIndirectW(&font));
}

// Scales a larger drawing down where LoadImageW would blow a smaller one up. MinGW's import library does not
// know it.
using LoadIconFunction = decltype(&LoadIconWithScaleDown);

LoadIconFunction loadIconFunction()
{
    const HMODULE controls = GetModuleHandleW(L"comctl32.dll");
    return controls ? reinterpret_cast<LoadIconFunction>(
               reinterpret_cast<void *>(GetProcAddress(controls, "LoadIconWithScaleDown")))
                    : nullptr;
}

OwnedIcon makeIcon(HINSTANCE module, PCWSTR name, int size)
{
    static const LoadIconFunction loadIcon = loadIconFunction();
    HICON icon = nullptr;
    if (loadIcon && SUCCEEDED(loadIcon(module, name, size, size, &icon))) {
        return OwnedIcon(icon);
    }
    return OwnedIcon();
}

OwnedIcon makeProgramIcon(int metric, int dpi)
{
    return makeIcon(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(TARN_PROGRAM_ICON),
        GetSystemMetricsForDpi(metric, static_cast<UINT>(dpi)));
}

} // namespace

DialogResources::DialogResources(const Popup &popup, int dpi)
    : m_textFont(makeTextFont(dpi))
    , m_titleFont(makeTitleFont(dpi))
    , m_kindIcon(
          makeIcon(nullptr, popup.kind == PopupKind::Question ? IDI_QUESTION : IDI_WARNING, iconSize(dpi)))
    , m_taskBarIcon(makeProgramIcon(SM_CXICON, dpi))
    , m_captionIcon(makeProgramIcon(SM_CXSMICON, dpi))
{ }

TextMeasures DialogResources::measure(HWND window, const Popup &popup, int dpi) const
{
    const int width = textWidth(dpi);
    TextMeasures measures {};
    {
        const FontContext title(window, titleFont());
        measures.titleHeight = title.textSize(popup.title, width, wrappedText).cy;
    }
    const FontContext text(window, textFont());
    for (const std::wstring_view paragraph : popup.paragraphs) {
        measures.paragraphHeights.push_back(text.textSize(paragraph, width, wrappedText).cy);
    }
    for (const PopupButton &button : popup.buttons) {
        measures.buttonLabelWidths.push_back(text.textSize(button.label, 0, DT_SINGLELINE).cx);
    }
    measures.lineHeight = text.textSize(L"Xg", 0, DT_SINGLELINE).cy;
    return measures;
}

} // namespace tarnGui
