#include "client/reply_maker.h"
#include "client/tarnctl/answer_text.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

using namespace tarnctl;
using tarn::Notification;

namespace {

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
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
    const tarn::Reply reply = tarn::ReplyMaker(GetParam().command).answered(parsed(GetParam().json));
    EXPECT_EQ(answerText(reply.command(), reply.answer()).toStdString(), GetParam().text);
    EXPECT_EQ(reply.outcome() == tarn::Outcome::Failed, GetParam().failure);
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
        AnswerCase {"getMcuVersion", R"({"cmd":"getMcuVersion","id":"t","v":1})",
            R"({"cmd":"getMcuVersion","v":1})", false},
        AnswerCase {"somethingNew", R"({"cmd":"somethingNew","id":"t","x":"y"})",
            R"({"cmd":"somethingNew","x":"y"})", false},
        AnswerCase {"somethingNew", R"({"cmd":"somethingNew","result":"failed"})", "failed", true}));

TEST(TarnctlAnswerTextTest, InOneLine)
{
    const QJsonObject answer =
        parsed(R"({"cmd":"getMcuUpdateParameters","hardwareVer":"2","mcuVer":"1.23"})");
    EXPECT_EQ(
        answerLine("getMcuUpdateParameters", answer), "getMcuUpdateParameters mcuVer: 1.23, hardwareVer: 2");
    EXPECT_EQ(lateAnswerLine(answer), "getMcuUpdateParameters mcuVer: 1.23, hardwareVer: 2");
}

TEST(TarnctlAnswerTextTest, NotificationsInOneLine)
{
    EXPECT_EQ(notificationLine({"getTarnBatteryNum", "80"}), "getTarnBatteryNum 80");
    EXPECT_EQ(notificationLine({"disengagedGraphics", ""}), "disengagedGraphics");
    EXPECT_EQ(
        compactJson(Notification {"disengagedGraphics", ""}), R"({"cmd":"disengagedGraphics","data":""})");
}
