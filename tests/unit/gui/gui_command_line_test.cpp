#include "gui/command_line.h"
#include "gui/popup_table.h"

#include <gtest/gtest.h>

#include <vector>

using Words = std::vector<const wchar_t *>;
using tarnGui::choosePopup;

TEST(GuiCommandLineTest, OneSwitchChoosesItsPopup)
{
    for (const tarnGui::Popup &popup : tarnGui::popupTable())
        EXPECT_EQ(choosePopup(Words {popup.commandSwitch.data()}), &popup);
}

TEST(GuiCommandLineTest, AnythingElseChoosesNone)
{
    EXPECT_EQ(choosePopup(Words {}), nullptr);
    EXPECT_EQ(choosePopup(Words {L""}), nullptr);
    EXPECT_EQ(choosePopup(Words {L"disengaged-graphics"}), nullptr);
    EXPECT_EQ(choosePopup(Words {L"--Disengaged-Graphics"}), nullptr);
    EXPECT_EQ(choosePopup(Words {L"--disengaged-graphics "}), nullptr);
    EXPECT_EQ(choosePopup(Words {L"--disengaged"}), nullptr);
    EXPECT_EQ(choosePopup(Words {L"--disengaged-graphics", L"--disengaged-graphics"}), nullptr);
    EXPECT_EQ(choosePopup(Words {L"--disengaged-graphics", L""}), nullptr);
}

TEST(GuiCommandLineTest, UsageNamesEverySwitch)
{
    const std::wstring usage = tarnGui::usageText();
    EXPECT_TRUE(usage.starts_with(L"Usage: TarnServiceGui SWITCH\n"));
    for (const tarnGui::Popup &popup : tarnGui::popupTable()) {
        EXPECT_NE(usage.find(popup.commandSwitch), std::wstring::npos);
        EXPECT_NE(usage.find(popup.summary), std::wstring::npos);
    }
    for (const wchar_t letter : usage) {
        EXPECT_LT(letter, 0x80); // the console's code page is not known
    }
}
