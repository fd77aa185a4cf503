#include "support/command_samples.h"

#include "support/reply_rules.h"

#include <QSet>

#include <gtest/gtest.h>

#include <algorithm>

using tarn::commandCatalogue;
using tarn::CommandEntry;
using tarn::DataKind;
using tarnTest::AnswerValues;
using tarnTest::CommandSample;
using tarnTest::commandSamples;

namespace {

bool hasValuesFor(QLatin1StringView key, const CommandEntry &command)
{
    const CommandSample &sample = tarnTest::sampleOf(command.name);
    return key == command.outcomeKey
        || std::any_of(sample.answers.begin(), sample.answers.end(),
            [key](const AnswerValues &answer) { return answer.key == key && answer.data.isEmpty(); });
}

} // namespace

TEST(CommandSamples, AreOfCommandsInTheCatalogue)
{
    QSet<QString> seen;
    for (const CommandSample &sample : commandSamples()) {
        const QString name = sample.command;
        SCOPED_TRACE(name.toStdString());
        EXPECT_FALSE(seen.contains(name));
        seen += name;
        const CommandEntry *command = tarn::findCommand(name);
        ASSERT_TRUE(command);
        for (const QString &data : sample.kinds)
            EXPECT_FALSE(command->data.objection(name, data)) << data.toStdString();
        for (const AnswerValues &answer : sample.answers) {
            if (answer.data.isEmpty()) {
                EXPECT_TRUE(command->answerKeys.contains(answer.key)) << answer.key.data();
            } else {
                EXPECT_TRUE(command->data.choices.contains(answer.data)) << answer.data.data();
            }
        }
    }
}

// A command without a row here answers no more than its request and an outcome.
TEST(CommandSamples, TellTheValuesOfEveryAnswer)
{
    for (const CommandEntry &command : commandCatalogue()) {
        for (const QLatin1StringView key : command.answerKeys)
            EXPECT_TRUE(hasValuesFor(key, command)) << command.name.data() << ' ' << key.data();
    }
}

TEST(CommandSamples, AreGoodAndBadByTheCatalogue)
{
    for (const CommandEntry &command : commandCatalogue()) {
        const QString name = command.name;
        SCOPED_TRACE(name.toStdString());
        const QStringList good = tarnTest::goodData(command);
        const QStringList bad = tarnTest::badData(command);
        ASSERT_FALSE(good.isEmpty());
        EXPECT_EQ(bad.isEmpty(), command.data.kind == DataKind::None);
        for (const QString &data : good) {
            const auto sent = data.isNull() ? std::nullopt : std::optional(data);
            EXPECT_FALSE(command.data.objection(name, sent)) << data.toStdString();
            EXPECT_FALSE(bad.contains(data)) << data.toStdString();
        }
        if (command.data.kind != DataKind::Choice)
            continue;
        for (const QString &data : bad)
            EXPECT_TRUE(command.data.objection(name, data)) << data.toStdString();
    }
}

TEST(CommandSamples, AreForAnAccessoryThatIsKnown)
{
    for (const CommandEntry &command : commandCatalogue())
        EXPECT_LT(tarnTest::accessoryFor(command).value_or(0), 8) << command.name.data();
}

namespace {

struct ReplyCase
{
    QJsonObject request;
    const char *reply;
    bool isAllowed;
};

// The name that a report shows.
void PrintTo(const ReplyCase &value, std::ostream *out)
{
    *out << value.reply;
}

class ReplyRules : public ::testing::TestWithParam<ReplyCase>
{ };

QJsonObject request(const char *command)
{
    return {{"cmd", command}, {"id", 5}};
}
QJsonObject request(const char *command, const char *data)
{
    return {{"cmd", command}, {"data", data}, {"id", 5}};
}

} // namespace

TEST_P(ReplyRules, TellWhatMayComeBack)
{
    const QString fault = tarnTest::faultOfReply(GetParam().request, GetParam().reply);
    EXPECT_EQ(fault.isEmpty(), GetParam().isAllowed) << fault.toStdString();
}

INSTANTIATE_TEST_SUITE_P(OfQueries, ReplyRules,
    ::testing::Values(
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":"1.23","id":5})", true},
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":"1.2","id":5})", false},
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":1.23,"id":5})", false},
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":"1.23"})", false},
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":"1.23","id":6})", false},
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion", "data":"1.23","id":5})", false},
        ReplyCase {request("getMcuVersion"), R"({"cmd":"getMcuVersion","id":5})", false},
        ReplyCase {request("getMcuVersion"), "", false}, ReplyCase {request("noSuchCommand"), "", true},
        ReplyCase {request("noSuchCommand"), R"({"cmd":"noSuchCommand","id":5})", false}));

INSTANTIATE_TEST_SUITE_P(OfActions, ReplyRules,
    ::testing::Values(ReplyCase {request("setDockLedStatus", "on"),
                          R"({"cmd":"setDockLedStatus","data":"on","id":5,"result":"failed"})", true},
        ReplyCase {request("setDockLedStatus", "on"),
            R"({"cmd":"setDockLedStatus","data":"on","id":5,"result":"done"})", false},
        ReplyCase {request("setDockLedStatus", "ON"),
            R"({"cmd":"setDockLedStatus","data":"ON","id":5,"result":"successed"})", false},
        ReplyCase {request("setKVaneLedLight", "5"), R"({"cmd":"setKVaneLedLight","data":"5","id":5})", true},
        ReplyCase {
            request("setKVaneLedLight", "5"), R"({"cmd":"setKVaneLedLight","data":"6","id":5})", false},
        ReplyCase {request("powerModeControl", "last"), "", true},
        ReplyCase {request("powerModeControl", "last"),
            R"({"cmd":"powerModeControl","data":"last","id":5,"result":"successed"})", false},
        ReplyCase {request("powerModeControl", "first"),
            R"({"cmd":"powerModeControl","data":"first","id":5,"result":"-10"})", true},
        ReplyCase {request("powerModeControl", "first"),
            R"({"cmd":"powerModeControl","data":"first","id":5,"result":"successed"})", false},
        ReplyCase {request("setGraphicsRGB", "on"),
            R"({"cmd":"setGraphicsRGB","data":"red","id":5,"result":"failed"})", true},
        ReplyCase {request("setGraphicsRGB", "on"),
            R"({"cmd":"setGraphicsRGB","data":"on","id":5,"result":"successed"})", false},
        ReplyCase {request("setGraphicsRGB", "red"),
            R"({"cmd":"setGraphicsRGB","data":"blue","id":5,"result":"successed"})", false},
        ReplyCase {request("requestMcuUpdate", "fw.bin"),
            R"({"cmd":"requestMcuUpdate","data":"successed","id":5,"mcuVer":"2.05"})", true},
        ReplyCase {request("requestMcuUpdate", "fw.bin"),
            R"({"cmd":"requestMcuUpdate","data":"successed","id":5})", false},
        ReplyCase {request("requestMcuUpdate", "fw.bin"),
            R"({"cmd":"requestMcuUpdate","data":"failed","id":5,"mcuVer":"2.05"})", false},
        ReplyCase {request("requestEcUpdate", "missing.rom"),
            R"({"cmd":"requestEcUpdate","data":"failed","id":5})", true},
        ReplyCase {request("requestEcUpdate", "missing.rom"),
            R"({"cmd":"requestEcUpdate","data":"successed","id":5})", false}));

TEST(ReplyRulesWithoutEc, AllowNothingThatTheEcWouldHaveTold)
{
    const ReplyCase cases[] = {
        {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":"","id":5})", true},
        {request("getMcuVersion"), R"({"cmd":"getMcuVersion","data":"1.23","id":5})", false},
        {request("getDockLedStatus"), R"({"cmd":"getDockLedStatus","data":"unknown","id":5})", true},
        {request("getDockLedStatus"), R"({"cmd":"getDockLedStatus","data":"off","id":5})", false},
        {request("setDockLedStatus", "on"),
            R"({"cmd":"setDockLedStatus","data":"on","id":5,"result":"failed"})", true},
        {request("setDockLedStatus", "on"),
            R"({"cmd":"setDockLedStatus","data":"on","id":5,"result":"successed"})", false},
        {request("setKVaneLedLight", "5"), R"({"cmd":"setKVaneLedLight","data":"5","id":5})", true},
        {request("powerModeControl", "last"), "", true},
        {request("powerModeControl", "first"),
            R"({"cmd":"powerModeControl","data":"first","id":5,"result":"-10"})", true},
        {request("setGraphicsRGB", "on"), R"({"cmd":"setGraphicsRGB","data":"red","id":5,"result":"failed"})",
            true},
        {request("requestMcuUpdate", "fw.bin"), R"({"cmd":"requestMcuUpdate","data":"failed","id":5})", true},
        {request("requestMcuUpdate", "fw.bin"),
            R"({"cmd":"requestMcuUpdate","data":"successed","id":5,"mcuVer":""})", false},
    };
    for (const ReplyCase &one : cases) {
        const QString fault = tarnTest::faultOfReplyWithoutEc(one.request, one.reply);
        EXPECT_EQ(fault.isEmpty(), one.isAllowed) << one.reply << ": " << fault.toStdString();
    }
}
