#include "panel/look/age_text.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using tarnPanel::ageText;

TEST(AgeText, CountsInWholeUnits)
{
    EXPECT_EQ(ageText(0ms), QStringLiteral("just now"));
    EXPECT_EQ(ageText(999ms), QStringLiteral("just now"));
    EXPECT_EQ(ageText(1s), QStringLiteral("1 s ago"));
    EXPECT_EQ(ageText(59999ms), QStringLiteral("59 s ago"));
    EXPECT_EQ(ageText(1min), QStringLiteral("1 min ago"));
    EXPECT_EQ(ageText(59min), QStringLiteral("59 min ago"));
    EXPECT_EQ(ageText(26h), QStringLiteral("26 h ago"));
}
