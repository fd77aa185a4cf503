#include "gui/popup_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using tarnGui::ExitCode;
using tarnGui::findPopup;
using tarnGui::Popup;
using tarnGui::PopupButton;
using tarnGui::PopupKind;

TEST(GuiPopupTableTest, HasTheFiveSwitchesOfTheService)
{
    std::set<std::wstring> switches;
    for (const Popup &popup : tarnGui::popupTable()) {
        EXPECT_TRUE(switches.emplace(popup.commandSwitch).second);
        EXPECT_EQ(findPopup(popup.commandSwitch), &popup);
    }
    EXPECT_EQ(switches,
        (std::set<std::wstring> {L"--disengaged-graphics", L"--graphics-disengaged-failed",
            L"--graphics-device-error", L"--graphics-driver-error", L"--graphics-patch-error"}));
}

TEST(GuiPopupTableTest, OnlyTheDisengagementIsAQuestion)
{
    const Popup *const question = findPopup(L"--disengaged-graphics");
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->kind, PopupKind::Question);
    ASSERT_EQ(question->buttons.size(), 2U);
    EXPECT_EQ(question->buttons[0].label, L"&Yes");
    EXPECT_EQ(question->buttons[0].answer, ExitCode::Yes);
    EXPECT_EQ(question->buttons[1].label, L"&No");
    EXPECT_EQ(question->buttons[1].answer, ExitCode::No);

    for (const Popup &popup : tarnGui::popupTable()) {
        if (&popup != question) {
            EXPECT_EQ(popup.kind, PopupKind::Notice);
            ASSERT_EQ(popup.buttons.size(), 1U);
            EXPECT_EQ(popup.buttons[0].label, L"OK");
            EXPECT_EQ(popup.buttons[0].answer, ExitCode::No);
        }
    }
}

TEST(GuiPopupTableTest, NothingIsRemovedWithoutAClearYes)
{
    for (const Popup &popup : tarnGui::popupTable()) {
        ASSERT_LT(popup.defaultButton, popup.buttons.size());
        EXPECT_EQ(popup.buttons[popup.defaultButton].answer, ExitCode::No);
    }
}

TEST(GuiPopupTableTest, TextsAreWholeSentences)
{
    for (const Popup &popup : tarnGui::popupTable()) {
        SCOPED_TRACE(std::string(popup.commandSwitch.begin(), popup.commandSwitch.end()));
        EXPECT_FALSE(popup.title.empty());
        EXPECT_EQ(popup.title.ends_with(L'?'), popup.kind == PopupKind::Question);
        EXPECT_GE(popup.paragraphs.size(), 2U); // what happened, and what to do
        for (const std::wstring_view paragraph : popup.paragraphs) {
            EXPECT_TRUE(paragraph.ends_with(L'.'));
            EXPECT_EQ(paragraph.find(L"  "), std::wstring_view::npos);
        }
    }
}

// The window hands them to functions that look for the zero at the end.
TEST(GuiPopupTableTest, TextsEndWithZero)
{
    for (const Popup &popup : tarnGui::popupTable()) {
        EXPECT_EQ(popup.title.data()[popup.title.size()], L'\0');
        for (const std::wstring_view paragraph : popup.paragraphs)
            EXPECT_EQ(paragraph.data()[paragraph.size()], L'\0');
        for (const PopupButton &button : popup.buttons)
            EXPECT_EQ(button.label.data()[button.label.size()], L'\0');
    }
}

TEST(GuiPopupTableTest, ContentIsTheParagraphsWithAnEmptyLineBetween)
{
    constexpr std::wstring_view paragraphs[] = {L"One.", L"Two.", L"Three."};
    Popup popup {};
    EXPECT_EQ(contentOf(popup), L"");
    popup.paragraphs = paragraphs;
    EXPECT_EQ(contentOf(popup), L"One.\n\nTwo.\n\nThree.");
}

// The service reads these numbers.
TEST(GuiPopupTableTest, ExitCodes)
{
    EXPECT_EQ(static_cast<int>(ExitCode::No), 0);
    EXPECT_EQ(static_cast<int>(ExitCode::Yes), 1);
    EXPECT_EQ(static_cast<int>(ExitCode::Usage), 2);
    EXPECT_EQ(static_cast<int>(ExitCode::NoWindow), 3);
}
