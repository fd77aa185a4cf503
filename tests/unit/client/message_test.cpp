#include "client/message.h"

#include <gtest/gtest.h>

using tarnClient::findCommand;
using tarnClient::Message;

namespace {

Message parsed(const char *json)
{
    return Message::parse(json).value();
}

} // namespace

namespace {

struct AnswerCase
{
    const char *command;
    const char *json;
    const char *text;
    bool failure;
};

// The name that a report shows.
void PrintTo(const AnswerCase &value, std::ostream *out)
{
    *out << value.command << ' ' << value.json;
}

class TarnctlAnswers : public ::testing::TestWithParam<AnswerCase>
{ };

} // namespace

TEST_P(TarnctlAnswers, ShowTheServicesValue)
{
    const Message message = parsed(GetParam().json);
    const tarnClient::CommandEntry *entry = findCommand(GetParam().command);
    EXPECT_EQ(message.answerText(entry).toStdString(), GetParam().text);
    EXPECT_EQ(message.tellsFailure(entry), GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(Replies, TarnctlAnswers,
    ::testing::Values(AnswerCase {"getMcuVersion", R"({"cmd":"getMcuVersion","data":"1.23"})", "1.23", false},
        AnswerCase {"getAccessoryType", R"({"cmd":"getAccessoryType","data":""})", "", false},
        AnswerCase {"getMcuUpdateParameters",
            R"({"accessoryCode":"4","cmd":"getMcuUpdateParameters","hardwareVer":"2","mcuVer":"1.23"})",
            "mcuVer: 1.23\nhardwareVer: 2\naccessoryCode: 4", false},
        AnswerCase {"setDockLedStatus", R"({"data":"on","result":"successed"})", "successed", false},
        AnswerCase {"setDockLedStatus", R"({"data":"on","result":"failed"})", "failed", true},
        AnswerCase {"setGraphicsRGB", R"({"data":"cyan","result":"successed"})", "successed", false},
        AnswerCase {"powerModeControl", R"({"data":"first","result":"2"})", "2", false},
        AnswerCase {
            "requestMcuUpdate", R"({"data":"successed","mcuVer":"1.24"})", "successed\nmcuVer: 1.24", false},
        AnswerCase {"requestMcuUpdate", R"({"data":"failed"})", "failed", true},
        AnswerCase {"requestLeaveMcuUpdateMode", R"({"data":"1.23"})", "1.23", false},
        AnswerCase {"getSmartChargingStatus", R"({"data":"failed"})", "failed", true},
        AnswerCase {"setKVaneLedLight", R"({"cmd":"setKVaneLedLight","data":"7"})", "done", false},
        AnswerCase {"setDockLedStatus", R"({"data":"failed","result":"successed"})", "successed", false},
        // Not as known: everything is shown.
        AnswerCase {"getMcuVersion", R"({"cmd":"getMcuVersion","tarnctl":"t","v":1})",
            R"({"cmd":"getMcuVersion","v":1})", false},
        AnswerCase {"somethingNew", R"({"cmd":"somethingNew","tarnctl":"t","x":"y"})",
            R"({"cmd":"somethingNew","x":"y"})", false},
        AnswerCase {"somethingNew", R"({"cmd":"somethingNew","result":"failed"})", "failed", true}));

TEST(TarnctlMessageTest, RecognisesItsAnswerByTheTag)
{
    const Message answer = parsed(R"({"cmd":"a","data":"1","tarnctl":"7-1"})");
    EXPECT_TRUE(answer.answers("7-1"));
    EXPECT_FALSE(answer.answers("7-2"));
    EXPECT_TRUE(answer.hasTag());
    EXPECT_EQ(answer.json(), R"({"cmd":"a","data":"1"})");
    const Message notification = parsed(R"({"cmd":"a","data":"1"})");
    EXPECT_FALSE(notification.answers(""));
    EXPECT_FALSE(notification.hasTag());
}

TEST(TarnctlMessageTest, Echoes)
{
    const QJsonObject request {{"cmd", "a"}, {"n", 1}};
    EXPECT_TRUE(parsed(R"({"cmd":"a","data":"x","n":1})").echoes(request));
    EXPECT_FALSE(parsed(R"({"cmd":"a","data":"x"})").echoes(request));
    EXPECT_FALSE(parsed(R"({"cmd":"a","n":2})").echoes(request));
    EXPECT_FALSE(parsed(R"({"cmd":"a"})").echoes({}));
}

TEST(TarnctlMessageTest, NotificationsInOneLine)
{
    EXPECT_EQ(
        parsed(R"({"cmd":"getTarnBatteryNum","data":"80"})").notificationText(), "getTarnBatteryNum 80");
    EXPECT_EQ(parsed(R"({"cmd":"disengagedGraphics","data":""})").notificationText(), "disengagedGraphics");
    EXPECT_EQ(
        parsed(R"({"cmd":"a","data":"b","z":1})").notificationText(), R"({"cmd":"a","data":"b","z":1})");
}

TEST(TarnctlMessageTest, OnlyObjectsAreMessages)
{
    EXPECT_FALSE(Message::parse("{abc}").has_value());
    EXPECT_FALSE(Message::parse("[1]").has_value());
    EXPECT_FALSE(Message::parse("").has_value());
}
