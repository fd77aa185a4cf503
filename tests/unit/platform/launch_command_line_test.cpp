#include "platform/user_session.h"

#include "support/printing.h"

#include <gtest/gtest.h>

#include <cwchar>

using tarnPlatform::formatLaunchCommandLine;
using tarnPlatform::LaunchCommandLine;

TEST(LaunchCommandLine, IsTheProgramInQuotesAndItsArgument)
{
    LaunchCommandLine line = {};
    EXPECT_TRUE(formatLaunchCommandLine(
        line, QString::fromUtf8("C:/Äpps Ω./TarnServiceGui/TarnServiceGui.exe"), "--disengaged-graphics"));
    EXPECT_EQ(QString::fromWCharArray(line),
        QString::fromUtf8("\"C:/Äpps Ω./TarnServiceGui/TarnServiceGui.exe\" --disengaged-graphics"));
}

TEST(LaunchCommandLine, HoldsAtMost259Characters)
{
    const QString argument = "--switch";
    const auto fits = [&argument](qsizetype length) {
        LaunchCommandLine line = {};
        const QString program(length - argument.size() - 3, 'x'); // two quotes and a blank
        if (!formatLaunchCommandLine(line, program, argument))
            return false;
        EXPECT_EQ(std::wcslen(line), static_cast<std::size_t>(length));
        return true;
    };
    EXPECT_TRUE(fits(258));
    EXPECT_TRUE(fits(259));
    EXPECT_FALSE(fits(260));
    EXPECT_FALSE(fits(5000));
}
