#include "popup_table.h"

#include <algorithm>

namespace tarnGui {

namespace {

constexpr PopupButton yesNo[] = {
    {L"&Yes", ExitCode::Yes},
    {L"&No", ExitCode::No},
};
constexpr PopupButton okOnly[] = {
    {L"OK", ExitCode::No},
};
// No is the safe answer: the user can press the key on the box again.
constexpr std::size_t noButton = 1;

constexpr std::wstring_view disengageParagraphs[] = {
    L"Save your work first, and close the programs that use the external graphics card, such as games and "
    L"video editors. They may stop working without it.",
    L"Screens that are connected to the graphics box will go dark.",
};

constexpr std::wstring_view disengageFailedParagraphs[] = {
    L"Please do not unplug the graphics box yet. Most likely a program is still using its graphics card.",
    L"Close your programs, such as games and video editors, and press the key on the box again.",
    L"If that does not help, shut down the computer before you unplug the box.",
};

constexpr std::wstring_view deviceErrorParagraphs[] = {
    L"The graphics box is connected, but the computer cannot find a graphics card in it.",
    L"Shut down the computer, check that the box has power and that its plug sits firmly, and start the "
    L"computer again.",
};

constexpr std::wstring_view driverErrorParagraphs[] = {
    L"The computer has no driver for the NVIDIA GeForce RTX 4060 Ti in your graphics box, so programs cannot "
    L"use it yet.",
    L"Download the GeForce driver from the NVIDIA website, install it, and restart the computer with the box "
    L"connected.",
};

constexpr std::wstring_view patchErrorParagraphs[] = {
    L"The NVIDIA driver is installed, but Windows reports that it does not work with the graphics card in "
    L"your graphics box.",
    L"Restart the computer with the box connected. If you see this message again, install the latest GeForce "
    L"driver from the NVIDIA website and choose a clean installation.",
};

constexpr Popup notice(std::wstring_view commandSwitch, std::wstring_view summary, std::wstring_view title,
    std::span<const std::wstring_view> paragraphs)
{
    return {commandSwitch, summary, title, paragraphs, okOnly, 0, PopupKind::Notice};
}

constexpr Popup popups[] = {
    {L"--disengaged-graphics", L"asks whether to disconnect the external graphics card",
        L"Disconnect the external graphics card?", disengageParagraphs, yesNo, noButton, PopupKind::Question},
    notice(L"--graphics-disengaged-failed", L"tells that it could not be disconnected",
        L"The graphics card could not be disconnected", disengageFailedParagraphs),
    notice(L"--graphics-device-error", L"tells that it was not found",
        L"The external graphics card was not found", deviceErrorParagraphs),
    notice(L"--graphics-driver-error", L"tells that its driver is missing",
        L"The graphics driver is not installed", driverErrorParagraphs),
    notice(L"--graphics-patch-error", L"tells that its driver has failed",
        L"The graphics driver is not working", patchErrorParagraphs),
};

} // namespace

std::span<const Popup> popupTable()
{
    return popups;
}

const Popup *findPopup(std::wstring_view commandSwitch)
{
    const auto *const found = std::find_if(std::begin(popups), std::end(popups),
        [commandSwitch](const Popup &popup) { return popup.commandSwitch == commandSwitch; });
    return found == std::end(popups) ? nullptr : found;
}

std::wstring contentOf(const Popup &popup)
{
    std::wstring content;
    for (const std::wstring_view paragraph : popup.paragraphs) {
        if (!content.empty())
            content += L"\n\n";
        content += paragraph;
    }
    return content;
}

} // namespace tarnGui
