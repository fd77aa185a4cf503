// The shipped GUI program, started by the service: the other tests put one in its place that opens no window.
#include "end_to_end/running_service.h"

#include "device/ec_registers.h"

#include <QFile>

#include <windows.h>

#include <commctrl.h>

#include <string>

using namespace tarnDeviceInfos;
using tarnTest::waitUntil;

namespace {

constexpr wchar_t titleOfWindows[] = L"Tarn external graphics";
constexpr wchar_t question[] = L"Disconnect the external graphics card?";
constexpr int windowBoundMs = 30000;
// For this long the window takes no answer by keyboard or mouse.
constexpr int deafMs = 1000;
// In the parameter of a key's message: it was down before.
constexpr LPARAM wasDown = 1 << 30;

const QString nameOfProgram = QStringLiteral("TarnServiceGui/TarnServiceGui");

HWND findWindow()
{
    const HWND window = FindWindowW(nullptr, titleOfWindows);
    return window && IsWindowVisible(window) ? window : nullptr;
}

struct TextSearch
{
    std::wstring_view text;
    bool found = false;
};

BOOL CALLBACK compareText(HWND control, LPARAM lengthy)
{
    auto &search = *reinterpret_cast<TextSearch *>(lengthy);
    wchar_t text[200] = {};
    GetWindowTextW(control, text, static_cast<int>(std::size(text)));
    search.found = search.found || text == search.text;
    return TRUE;
}

// In Wine every text of a task dialog is a control.
bool says(HWND window, std::wstring_view text)
{
    TextSearch search {text};
    EnumChildWindows(window, compareText, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

QByteArray resource(const QString &program, LPCWSTR name, LPCWSTR type)
{
    const HMODULE file = LoadLibraryExW(
        program.toStdWString().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    const HRSRC entry = file ? FindResourceW(file, name, type) : nullptr;
    const HGLOBAL data = entry ? LoadResource(file, entry) : nullptr;
    QByteArray bytes;
    if (data)
        bytes = QByteArray(
            static_cast<const char *>(LockResource(data)), static_cast<int>(SizeofResource(file, entry)));
    if (file)
        FreeLibrary(file);
    return bytes;
}

class GuiProgram : public tarnTest::RunningService
{
protected:
    void SetUp() override
    {
        const QString path = service.path(nameOfProgram + QStringLiteral(".exe"));
        QFile::remove(path);
        ASSERT_TRUE(QFile::copy(tarnTest::builtProgram(nameOfProgram), path));
        ASSERT_EQ(findWindow(), nullptr);
        RunningService::SetUp();
    }
    void TearDown() override
    {
        if (const HWND open = findWindow()) // of a failed test
            PostMessageW(open, WM_CLOSE, 0, 0);
        RunningService::TearDown();
    }

    [[nodiscard]] tarnSimulator::Device gpu()
    {
        return service.computer().devices().device(*service.computer().devices().find("gpu"));
    }
    void breakGpu(std::uint32_t problem)
    {
        tarnSimulator::Device changed = gpu();
        changed.problem = problem;
        service.computer().devices().store(*service.computer().devices().find("gpu"), changed);
    }
    [[nodiscard]] bool waitForReport(std::uint32_t count)
    {
        return waitUntil([&] { return service.computer().gpuReports().count >= count; }, 30000);
    }
    void plugInAndPressKey()
    {
        service.attach(ACCESSORY_GRAPHICS);
        ASSERT_TRUE(service.waitForLog("GraphicsActive_log: Successed to active graphics."));
        ASSERT_TRUE(service.computer().pressGpuKey());
    }
    [[nodiscard]] HWND waitForWindow()
    {
        HWND window = nullptr;
        EXPECT_TRUE(waitUntil([&] { return (window = findWindow()) != nullptr; }, windowBoundMs));
        return window;
    }
    // As a click on it, but one that no mouse makes.
    static void press(HWND window, int buttonId)
    {
        PostMessageW(window, TDM_CLICK_BUTTON, static_cast<WPARAM>(buttonId), 0);
    }
    // Sent to the control that has the keyboard focus.
    static void pressKey(HWND window, WPARAM key, LPARAM flags = 0)
    {
        GUITHREADINFO thread {};
        thread.cbSize = sizeof thread;
        GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread);
        ASSERT_NE(thread.hwndFocus, nullptr);
        PostMessageW(thread.hwndFocus, WM_KEYDOWN, key, 1 | flags);
    }
    static bool staysOpen(HWND window, int forMs)
    {
        return !waitUntil([&] { return !IsWindow(window); }, forMs);
    }
    static bool closes(HWND window)
    {
        return waitUntil([&] { return !IsWindow(window); }, 5000);
    }

    void expectTheGpuLetGoOnAYes()
    {
        plugInAndPressKey();
        const HWND window = waitForWindow();
        EXPECT_TRUE(says(window, question));
        press(window, IDYES);
        EXPECT_TRUE(client.waitForNotification("disengagedGraphics", ""));
        EXPECT_TRUE(waitForReport(2));
        EXPECT_EQ(service.computer().gpuReports().gpuDriverData, GPU_PRESENT | GPU_DRIVER_INSTALLED);
        EXPECT_FALSE(gpu().started);
        EXPECT_TRUE(service.log().contains("GraphicsActive_log & GraphicsDisengaged_log: click yes!!!"));
    }
};

class GuiProgramOfAService : public GuiProgram
{
protected:
    void SetUp() override
    {
        service.computer().desktop().setServiceSession(true);
        GuiProgram::SetUp();
    }
};

} // namespace

// Without it Windows gives the program the controls of long ago, which have no task dialogs, and draws it
// small and magnifies it on a screen of 200 %. Wine takes no notice of the former.
TEST(GuiProgramFile, CarriesItsManifest)
{
    const QByteArray manifest = resource(
        tarnTest::builtProgram(nameOfProgram), MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24) /* RT_MANIFEST */);
    EXPECT_TRUE(manifest.contains("name=\"Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\""));
    EXPECT_TRUE(manifest.contains(">PerMonitorV2, PerMonitor</dpiAwareness>"));
    EXPECT_TRUE(manifest.contains("<requestedExecutionLevel level=\"asInvoker\" uiAccess=\"false\"/>"));
}

TEST_F(GuiProgram, LetsTheGpuGoOnAYes)
{
    expectTheGpuLetGoOnAYes();
}

TEST_F(GuiProgramOfAService, LetsTheGpuGoOnAYes)
{
    expectTheGpuLetGoOnAYes();
}

// Closing the window from outside works at once, before it takes answers.
TEST_F(GuiProgramOfAService, KeepsTheGpuWhenItsWindowIsClosed)
{
    plugInAndPressKey();
    const HWND window = waitForWindow();
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(closes(window));
    EXPECT_TRUE(service.waitForLog("GraphicsActive_log & GraphicsDisengaged_log: click no!!!"));
    EXPECT_TRUE(service.waitForLog("GraphicsDisengaged_log: Graphics disengagement process finished."));
    EXPECT_TRUE(gpu().started);
    EXPECT_EQ(service.computer().gpuReports().count, 1U);
}

TEST_F(GuiProgramOfAService, HoldsTheEcUntilItsNoticeIsRead)
{
    breakGpu(31);
    service.attach(ACCESSORY_GRAPHICS);
    const HWND window = waitForWindow();
    EXPECT_TRUE(says(window, L"The graphics driver is not working"));
    EXPECT_EQ(service.computer().gpuReports().count, 0U);
    EXPECT_TRUE(staysOpen(window, deafMs));
    pressKey(window, VK_RETURN);
    EXPECT_TRUE(closes(window));
    EXPECT_TRUE(waitForReport(1));
    EXPECT_EQ(service.computer().gpuReports().gpuDriverData, GPU_PRESENT | GPU_DRIVER_INSTALLED);
    EXPECT_TRUE(service.log().contains("GraphicsActive_log & GraphicsDisengaged_log: click no!!!"));
}

TEST_F(GuiProgramOfAService, GoesWithTheService)
{
    plugInAndPressKey();
    const HWND window = waitForWindow();
    EXPECT_EQ(service.stop(), 0);
    EXPECT_TRUE(closes(window));
    ASSERT_TRUE(service.start()); // for the end of the test
}

TEST_F(GuiProgram, StandsOnTopInTheMiddleAndInTheTaskBar)
{
    plugInAndPressKey();
    const HWND window = waitForWindow();
    const LONG_PTR style = GetWindowLongPtrW(window, GWL_EXSTYLE);
    EXPECT_NE(style & WS_EX_TOPMOST, 0);
    EXPECT_NE(style & WS_EX_APPWINDOW, 0);
    RECT place {};
    RECT screen {};
    GetWindowRect(window, &place);
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    EXPECT_GT(place.right - place.left, 100);
    EXPECT_NEAR(place.left + place.right, screen.left + screen.right, 2);
    EXPECT_NEAR(place.top + place.bottom, screen.top + screen.bottom, 2);
    press(window, IDCANCEL);
    EXPECT_TRUE(closes(window));
}

// A space bar that is held, or keys typed while the window appears, are no answer.
TEST_F(GuiProgramOfAService, TakesNoKeysThatWereMeantForAnotherProgram)
{
    plugInAndPressKey();
    const HWND window = waitForWindow();
    EXPECT_TRUE(staysOpen(window, deafMs));
    for (const WPARAM key : {WPARAM(VK_RETURN), WPARAM(VK_SPACE), WPARAM(VK_ESCAPE)})
        pressKey(window, key, wasDown);
    for (const WPARAM key : {WPARAM(L'Y'), WPARAM(L'N')})
        pressKey(window, key);
    EXPECT_TRUE(staysOpen(window, 500));
    pressKey(window, VK_RETURN);
    EXPECT_TRUE(closes(window));
    EXPECT_TRUE(service.waitForLog("GraphicsActive_log & GraphicsDisengaged_log: click no!!!"));
    EXPECT_TRUE(gpu().started);
}
