#include "dialog_window.h"

#include "gui/popup_table.h"
#include "screen_place.h"

#include <commctrl.h>

#include <utility>

namespace tarnGui {

namespace {

constexpr wchar_t className[] = L"TarnServiceGuiDialog";
constexpr DWORD windowStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
// The service that starts the program has no window the user could come from.
constexpr DWORD windowStyleEx = WS_EX_TOPMOST | WS_EX_APPWINDOW | WS_EX_CONTROLPARENT;
constexpr UINT flashCount = 5;

// Above IDOK and IDCANCEL, which the dialog keys send.
constexpr std::size_t firstButtonId = 100;
constexpr std::size_t noControlId = 0;

// Ties the program to the common controls of its manifest; buttons have today's look only then.
bool initialiseControls()
{
    const INITCOMMONCONTROLSEX controls {sizeof controls, ICC_STANDARD_CLASSES};
    return InitCommonControlsEx(&controls);
}

bool registerWindowClass(WNDPROC procedure)
{
    WNDCLASSEXW windowClass {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = className;
    return RegisterClassExW(&windowClass) != 0;
}

void place(HWND control, const Area &area)
{
    SetWindowPos(
        control, nullptr, area.left, area.top, area.width, area.height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void setFont(HWND control, HFONT font)
{
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}

void setIcon(HWND window, WPARAM kind, HICON icon)
{
    SendMessageW(window, WM_SETICON, kind, reinterpret_cast<LPARAM>(icon));
}

// A focused button would take a bare "y" for Alt+Y. Whoever is typing when the window appears must not answer
// by it.
bool isTypedLetter(const MSG &message)
{
    return message.message == WM_CHAR && message.wParam > L' ';
}

} // namespace

DialogWindow::DialogWindow(const Popup &popup)
    : m_popup(popup)
{ }

DialogWindow::~DialogWindow()
{
    if (m_window) {
        DestroyWindow(m_window);
    }
}

ExitCode DialogWindow::ask()
{
    if (!initialiseControls() || !registerWindowClass(&DialogWindow::receive) || !create()) {
        return ExitCode::NoWindow;
    }
    show();
    MSG message {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (isTypedLetter(message) || !IsDialogMessageW(m_window, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    return message.message == WM_QUIT ? static_cast<ExitCode>(message.wParam) : ExitCode::NoWindow;
}

LRESULT CALLBACK DialogWindow::receive(HWND window, UINT message, WPARAM wide, LPARAM lengthy)
{
    if (message == WM_NCCREATE) {
        const auto *const creation = reinterpret_cast<const CREATESTRUCTW *>(lengthy);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
        static_cast<DialogWindow *>(creation->lpCreateParams)->m_window = window;
    }
    auto *const self = reinterpret_cast<DialogWindow *>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self ? self->handle(message, wide, lengthy) : DefWindowProcW(window, message, wide, lengthy);
}

LRESULT DialogWindow::handle(UINT message, WPARAM wide, LPARAM lengthy)
{
    switch (message) {
    case WM_COMMAND:
        handleCommand(LOWORD(wide));
        return 0;
    case WM_CLOSE:
        finish(m_popup.closeAnswer);
        return 0;
    case DM_GETDEFID:
        return static_cast<LRESULT>(MAKELONG(m_defaultId, DC_HASDEFID));
    case DM_SETDEFID:
        m_defaultId = wide;
        return TRUE;
    case WM_ACTIVATE:
        rememberFocus(LOWORD(wide) != WA_INACTIVE);
        return 0;
    case WM_SETFOCUS:
        SetFocus(m_focus);
        return 0;
    case WM_DPICHANGED: {
        const RECT *const suggested = reinterpret_cast<const RECT *>(lengthy);
        applyDpi(HIWORD(wide));
        const SIZE size = windowSize();
        SetWindowPos(m_window, nullptr, suggested->left, suggested->top, size.cx, size.cy,
            SWP_NOZORDER | SWP_NOACTIVATE);
        return 0;
    }
    case WM_ERASEBKGND:
        paintBackground(reinterpret_cast<HDC>(wide));
        return TRUE;
    case WM_PAINT:
        paintIcon();
        return 0;
    case WM_CTLCOLORSTATIC:
        SetTextColor(reinterpret_cast<HDC>(wide), GetSysColor(COLOR_WINDOWTEXT));
        SetBkColor(reinterpret_cast<HDC>(wide), GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    case WM_CTLCOLORBTN:
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_3DFACE));
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
        InvalidateRect(m_window, nullptr, TRUE);
        break;
    case WM_NCDESTROY:
        return DefWindowProcW(std::exchange(m_window, nullptr), message, wide, lengthy);
    default:
        break;
    }
    return DefWindowProcW(m_window, message, wide, lengthy);
}

bool DialogWindow::create()
{
    const RECT screen = activeWorkArea();
    // Its place decides its DPI, which decides its size.
    CreateWindowExW(windowStyleEx, className, windowTitle.data(), windowStyle, screen.left, screen.top, 0, 0,
        nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (!m_window) {
        return false;
    }
    createControls();
    applyDpi(static_cast<int>(GetDpiForWindow(m_window)));
    centreOnTop(m_window, windowSize());
    return true;
}

void DialogWindow::createControls()
{
    m_title = createControl(WC_STATICW, m_popup.title, SS_LEFT | SS_NOPREFIX, noControlId);
    for (const std::wstring_view paragraph : m_popup.paragraphs) {
        m_paragraphs.push_back(createControl(WC_STATICW, paragraph, SS_LEFT | SS_NOPREFIX, noControlId));
    }
    for (std::size_t index = 0; index < m_popup.buttons.size(); ++index) {
        const bool isDefault = index == m_popup.defaultButton;
        const DWORD style = WS_TABSTOP | (isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON);
        m_buttons.push_back(
            createControl(WC_BUTTONW, m_popup.buttons[index].label, style, firstButtonId + index));
    }
    m_defaultId = firstButtonId + m_popup.defaultButton;
    m_focus = m_buttons[m_popup.defaultButton];
}

HWND DialogWindow::createControl(
    const wchar_t *windowClass, std::wstring_view text, DWORD style, std::size_t controlId)
{
    return CreateWindowExW(0, windowClass, text.data(), style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, m_window,
        reinterpret_cast<HMENU>(controlId), GetModuleHandleW(nullptr), nullptr);
}

void DialogWindow::show()
{
    MessageBeep(m_popup.kind == PopupKind::Question ? MB_ICONQUESTION : MB_ICONWARNING);
    ShowWindow(m_window, SW_SHOWNORMAL);
    if (!SetForegroundWindow(m_window)) {
        // Windows leaves the keyboard with a user who is typing elsewhere. The window is on top all the same.
        FLASHWINFO flash {sizeof flash, m_window, FLASHW_ALL | FLASHW_TIMERNOFG, flashCount, 0};
        FlashWindowEx(&flash);
    }
    UpdateWindow(m_window);
}

void DialogWindow::applyDpi(int dpi)
{
    m_dpi = dpi;
    auto resources = std::make_unique<DialogResources>(m_popup, dpi);
    m_layout = layOutDialog(dpi, resources->measure(m_window, m_popup, dpi));
    setIcon(m_window, ICON_BIG, resources->taskBarIcon());
    setIcon(m_window, ICON_SMALL, resources->captionIcon());
    setFont(m_title, resources->titleFont());
    for (const HWND paragraph : m_paragraphs) {
        setFont(paragraph, resources->textFont());
    }
    for (const HWND button : m_buttons) {
        setFont(button, resources->textFont());
    }
    // Only now does nothing use the fonts and icons of before.
    m_resources = std::move(resources);
    placeControls();
}

void DialogWindow::placeControls()
{
    place(m_title, m_layout.title);
    for (std::size_t index = 0; index < m_paragraphs.size(); ++index) {
        place(m_paragraphs[index], m_layout.paragraphs[index]);
    }
    for (std::size_t index = 0; index < m_buttons.size(); ++index) {
        place(m_buttons[index], m_layout.buttons[index]);
    }
    InvalidateRect(m_window, nullptr, TRUE);
}

SIZE DialogWindow::windowSize() const
{
    RECT frame {0, 0, m_layout.width, m_layout.height};
    AdjustWindowRectExForDpi(&frame, windowStyle, FALSE, windowStyleEx, static_cast<UINT>(m_dpi));
    return {frame.right - frame.left, frame.bottom - frame.top};
}

void DialogWindow::paintBackground(HDC context) const
{
    RECT client {};
    GetClientRect(m_window, &client);
    const int lineHeight = scaled(1, m_dpi);
    const RECT panel {0, 0, client.right, m_layout.footerTop};
    const RECT line {0, m_layout.footerTop, client.right, m_layout.footerTop + lineHeight};
    const RECT footer {0, line.bottom, client.right, client.bottom};
    FillRect(context, &panel, GetSysColorBrush(COLOR_WINDOW));
    FillRect(context, &line, GetSysColorBrush(COLOR_3DLIGHT));
    FillRect(context, &footer, GetSysColorBrush(COLOR_3DFACE));
}

void DialogWindow::paintIcon() const
{
    PAINTSTRUCT paint {};
    const HDC context = BeginPaint(m_window, &paint);
    const Area &area = m_layout.icon;
    DrawIconEx(context, area.left, area.top, m_resources->kindIcon(), area.width, area.height, 0, nullptr,
        DI_NORMAL);
    EndPaint(m_window, &paint);
}

void DialogWindow::handleCommand(std::size_t controlId)
{
    if (controlId == IDCANCEL) { // Escape
        finish(m_popup.closeAnswer);
        return;
    }
    if (controlId >= firstButtonId && controlId - firstButtonId < m_popup.buttons.size()) {
        finish(m_popup.buttons[controlId - firstButtonId].answer);
    }
}

// Back in the window the focus is where it was, not on the window itself.
void DialogWindow::rememberFocus(bool active)
{
    if (active) {
        SetFocus(m_focus);
        return;
    }
    const HWND focus = GetFocus();
    if (focus && IsChild(m_window, focus)) {
        m_focus = focus;
    }
}

void DialogWindow::finish(ExitCode answer)
{
    DestroyWindow(m_window);
    PostQuitMessage(static_cast<int>(answer));
}

} // namespace tarnGui
