#include "pipe/outbox/message_format.h"

#include <gtest/gtest.h>

using namespace tarnPipeServer;

TEST(MessageFormat, IsCompactWithKeysInOrder)
{
    EXPECT_EQ(messageText({{"z", 1}, {"cmd", "x"}, {"data", "a b"}}), R"({"cmd":"x","data":"a b","z":1})");
    EXPECT_EQ(messageText({}), "{}");
}

TEST(MessageFormat, KeepsTextInUtf8)
{
    EXPECT_EQ(messageText({{"cmd", "ü\"\n"}}).toUtf8(), QByteArray("{\"cmd\":\"ü\\\"\\n\"}"));
}

TEST(MessageFormat, ANotificationHasExactlyCmdAndData)
{
    EXPECT_EQ(
        notificationText("changeAccessoryType", "dock"), R"({"cmd":"changeAccessoryType","data":"dock"})");
    EXPECT_EQ(notificationText("disengagedGraphics", ""), R"({"cmd":"disengagedGraphics","data":""})");
}
