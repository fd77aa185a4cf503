#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace tarnGui {

// The exit codes that the service reads. It takes every code but Yes for a no.
enum class ExitCode {
    No = 0,
    Yes = 1,
    Usage = 2,
    NoWindow = 3,
};

enum class PopupKind {
    Question,
    Notice,
};

struct PopupButton
{
    // With an ampersand before the letter that presses it together with Alt.
    std::wstring_view label;
    ExitCode answer;
};

// One of the windows the program can show. All texts are literals that end with a zero.
struct Popup
{
    std::wstring_view commandSwitch;
    // For the usage text.
    std::wstring_view summary;
    std::wstring_view title;
    std::span<const std::wstring_view> paragraphs;
    std::span<const PopupButton> buttons;
    std::size_t defaultButton;
    PopupKind kind;
};

} // namespace tarnGui
