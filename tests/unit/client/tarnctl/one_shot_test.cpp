#include "client/pipe_address.h"
#include "support/pipe_peer.h"
#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/tool_run.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QJsonDocument>

using namespace tarnClientTest;
using std::chrono::milliseconds;

namespace {

// Answers every request with "data" or "result".
void answerAll(FakeService &service, const QString &key, const QString &value)
{
    service.onRequest(
        [&service, key, value](const QJsonObject &request) { service.answer(request, key, value); });
}

} // namespace

TEST(TarnctlOneShotTest, PrintsTheAnswerOfAQuery)
{
    FakeService service;
    answerAll(service, "data", "1.23");
    const ToolRun run = runTool(service, {"getMcuVersion"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "1.23\n");
    EXPECT_TRUE(run.errors.isEmpty());
    const QJsonObject request = QJsonDocument::fromJson(service.requests().value(0)).object();
    EXPECT_EQ(request.keys(), (QStringList {"cmd", "id"}));
    EXPECT_EQ(request.value("cmd").toString(), "getMcuVersion");
}

TEST(TarnctlOneShotTest, SendsDataAndPrintsTheOutcome)
{
    FakeService service;
    answerAll(service, "result", "successed");
    const ToolRun run = runTool(service, {"setDockLedStatus", "on"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "successed\n");
    const QJsonObject request = QJsonDocument::fromJson(service.requests().value(0)).object();
    EXPECT_EQ(request.value("data").toString(), "on");
}

TEST(TarnctlOneShotTest, FailedEndsWithOne)
{
    FakeService service;
    answerAll(service, "result", "failed");
    const ToolRun run = runTool(service, {"setDockLedStatus", "off"});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.output, "failed\n");
}

TEST(TarnctlOneShotTest, RequestsHaveDifferentTags)
{
    FakeService service;
    answerAll(service, "data", "x");
    EXPECT_EQ(runTool(service, {"getMcuVersion"}).code, 0);
    EXPECT_EQ(runTool(service, {"getMcuVersion"}).code, 0);
    ASSERT_EQ(service.requests().size(), 2);
    EXPECT_NE(service.requests().at(0), service.requests().at(1));
}

TEST(TarnctlOneShotTest, ForeignMessagesAreNotTheAnswer)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        // The same command name pushed, and the late answer to an earlier process.
        service.notify("getTarnBatteryNum", "11");
        service.answer(withField(request, "id", "1-1"), "data", "22");
        service.later(milliseconds(20), [&service, request] { service.answer(request, "data", "33"); });
    });
    const ToolRun run = runTool(service, {"getTarnBatteryNum"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "33\n");
    EXPECT_TRUE(run.errors.isEmpty());
}

TEST(TarnctlOneShotTest, VerboseShowsWhatElseArrives)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.write("?{abc}");
        service.notify("changeAccessoryType", "dock");
        service.answer(request, "data", "33");
    });
    const ToolRun run = runTool(service, {"--verbose", "getTarnBatteryNum"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "33\n");
    EXPECT_TRUE(run.errors.contains("meanwhile: changeAccessoryType dock\n"));
    EXPECT_TRUE(run.errors.contains("no JSON (5 bytes): {abc}\n")) << run.errors.toStdString();
    EXPECT_TRUE(run.errors.contains("no JSON (1 bytes): %3F\n")) << run.errors.toStdString();
}

TEST(TarnctlOneShotTest, VerboseShowsAnswersToOthersInFull)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.answer(withField(request, "id", "1-1"), "data", "22");
        service.answer(request, "data", "33");
    });
    const ToolRun run = runTool(service, {"--verbose", "getTarnBatteryNum"});
    EXPECT_EQ(run.output, "33\n");
    EXPECT_EQ(run.errors, "meanwhile: {\"cmd\":\"getTarnBatteryNum\",\"data\":\"22\"}\n");
}

TEST(TarnctlOneShotTest, GluedDocuments)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.write(R"(garbage}{"cmd":"changeAccessoryType","data":"dock"})"
            + compact(withField(request, "data", "a{b}c")) + R"({"cmd":"getTarnBatteryNum","data":"5"})");
    });
    const ToolRun run = runTool(service, {"getTarnKvaneSnCode"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "a{b}c\n");
}

TEST(TarnctlOneShotTest, SplitDocument)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        const QByteArray answer = compact(withField(request, "data", "1.23"));
        const qsizetype part = answer.size() / 3;
        service.write(answer.left(part));
        service.later(milliseconds(30), [&service, answer, part] { service.write(answer.mid(part, part)); });
        service.later(milliseconds(60), [&service, answer, part] { service.write(answer.mid(2 * part)); });
    });
    EXPECT_EQ(runTool(service, {"getMcuVersion"}).output, "1.23\n");
}

TEST(TarnctlOneShotTest, TheRestOfALostDocumentDoesNotHideTheAnswer)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.write(R"({"cmd":"lost)");
        // Later than a document may pause.
        service.later(milliseconds(2300), [&service, request] { service.answer(request, "data", "1.23"); });
    });
    EXPECT_EQ(runTool(service, {"getMcuVersion"}).output, "1.23\n");
}

TEST(TarnctlOneShotTest, JsonIsTheAnswerWithoutTheTag)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.notify("getTarnBatteryNum", "11");
        service.answer(request, "result", "successed");
    });
    const ToolRun run = runTool(service, {"--json", "setDockLedStatus", "on"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "{\"cmd\":\"setDockLedStatus\",\"data\":\"on\",\"result\":\"successed\"}\n");
}

TEST(TarnctlOneShotTest, AnAnswerWithoutValueIsDone)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) { service.write(compact(request)); });
    EXPECT_EQ(runTool(service, {"setKVaneLedLight", "7"}).output, "done\n");
    EXPECT_EQ(runTool(service, {"--json", "requestBeginGraphicsMcuUpdate"}).output,
        "{\"cmd\":\"requestBeginGraphicsMcuUpdate\"}\n");
}

TEST(TarnctlOneShotTest, LastIsDoneOnceSent)
{
    FakeService service;
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = runTool(service, {"powerModeControl", "last"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "sent\n");
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_EQ(service.requests().size(), 1);
    EXPECT_EQ(service.commands(), QStringList {"powerModeControl"});
    EXPECT_TRUE(runTool(service, {"--json", "powerModeControl", "last"}).output.isEmpty());
}

TEST(TarnctlOneShotTest, LastNeedsNoTimeForAnAnswer)
{
    FakeService service;
    const ToolRun run = runTool(service, {"--timeout", "0.1", "powerModeControl", "last"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "sent\n");
}

TEST(TarnctlOneShotTest, TellsAPersonHowLongItCanTake)
{
    FakeService service;
    const auto answerLate = [&service](const QJsonObject &request) {
        service.later(
            milliseconds(3300), [&service, request] { service.answer(request, "data", "successed"); });
    };
    service.onRequest(answerLate);
    const ToolRun run = runTool(service, {"requestMcuUpdate", "a.bin"}, typed("", true));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "successed\n");
    EXPECT_EQ(run.errors, "Waiting for the answer to requestMcuUpdate, up to 15 min.\n");
}

TEST(TarnctlOneShotTest, LastWithAServiceThatLeaves)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.dropClient(); });
    const ToolRun run = runTool(service, {"powerModeControl", "last"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.output.isEmpty());
}

TEST(TarnctlOneShotTest, ForceSendsWhatIsNotKnown)
{
    FakeService service;
    answerAll(service, "result", "successed");
    EXPECT_EQ(runTool(service, {"--force", "brandNew", "x"}).output, "successed\n");
    EXPECT_EQ(runTool(service, {"--force", "setDockLedStatus", "ON"}).code, 0);
    EXPECT_EQ(service.commands(), (QStringList {"brandNew", "setDockLedStatus"}));
}

TEST(TarnctlOneShotTest, DataMayLookLikeAnOption)
{
    FakeService service;
    answerAll(service, "data", "successed");
    EXPECT_EQ(runTool(service, {"--force", "setKVaneLedLight", "--", "-1"}).code, 0);
    const QJsonObject request = QJsonDocument::fromJson(service.requests().value(0)).object();
    EXPECT_EQ(request.value("data").toString(), "-1");
}

TEST(TarnctlOneShotTest, EmptyDataIsSent)
{
    FakeService service;
    answerAll(service, "result", "failed");
    EXPECT_EQ(runTool(service, {"--force", "setDockLedStatus", ""}).code, 1);
    const QJsonObject request = QJsonDocument::fromJson(service.requests().value(0)).object();
    EXPECT_EQ(request.keys(), (QStringList {"cmd", "data", "id"}));
}

TEST(TarnctlOneShotTest, MoreThanTheServiceTakesInOnePieceIsAMistake)
{
    const FakeService service;
    const ToolRun run = runTool(service, {"--force", "requestMcuUpdate", QString(5000, u'a')});
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: The request has 5")) << run.errors.toStdString();
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST(TarnctlOneShotTest, NoService)
{
    const ToolRun run = runTool({"--pipe", "tarnctlTestNobody", "getMcuVersion"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_EQ(run.errors,
        "tarnctl: No service answers on the pipe \"tarnctlTestNobody\" ("
            + tarn::pipeAddress("tarnctlTestNobody").text.toUtf8()
            + ").\nStart it first: ./run on the simulated computer, or the service \"Tarn Service\" on "
              "Windows.\n");
}

TEST(TarnctlOneShotTest, ServiceLeavesBeforeTheAnswer)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.dropClient(); });
    const ToolRun run = runTool(service, {"getMcuVersion"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.contains("went away before it answered getMcuVersion"));
}

TEST(TarnctlOneShotTest, AnAnswerThatComesWithTheEndCounts)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.answer(request, "data", "1.23");
        service.later(milliseconds(0), [&service] { service.dropClient(); });
    });
    const ToolRun run = runTool(service, {"getMcuVersion"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "1.23\n");
}

TEST(TarnctlOneShotTest, NoAnswerInTime)
{
    FakeService service;
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = runTool(service, {"--timeout", "0.2", "getMcuVersion"});
    EXPECT_EQ(run.code, 4);
    EXPECT_GE(clock.elapsed(), 195);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.errors.startsWith("tarnctl: No answer to getMcuVersion within 0.2 s.\n"
                                      "First see whether the EC is reserved: after an EC update"))
        << run.errors.toStdString();
}

TEST(TarnctlOneShotTest, WithoutAnAnswerItAsksNothingElse)
{
    FakeService service;
    // Longer than the pause in which nothing would be sent anyway.
    EXPECT_EQ(runTool(service, {"--timeout", "1.05", "getMcuVersion"}).code, 4);
    EXPECT_FALSE(tarnTest::waitUntil([&service] { return service.requests().size() > 1; }, 100));
}

TEST(TarnctlOneShotTest, WithoutAnAnswerTheReasonsFitTheCommand)
{
    const FakeService service;
    const auto complaint = [&service](const char *command) {
        return runTool(service, {"--force", "--timeout", "0.1", command}).errors;
    };
    EXPECT_TRUE(complaint("getTarnBatteryNum").contains("\nAnother client may have taken it: look at"));
    EXPECT_TRUE(complaint("noSuchCommand").contains("\nThis service may not know the command, or another"));
    EXPECT_TRUE(complaint("getGraphicsRGB")
                    .contains("\nElse another client may have taken the answer, an update or the tool"));
}

TEST(TarnctlOneShotTest, MessagesAheadOfTheAnswerMoveTheDeadline)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        for (int message = 0; message < 4; ++message) // half a second each
            service.notify("getTarnBatteryNum", "1");
        service.later(milliseconds(1700), [&service, request] { service.answer(request, "data", "1.23"); });
    });
    EXPECT_EQ(runTool(service, {"--timeout", "1", "getMcuVersion"}).output, "1.23\n");
}

TEST(TarnctlOneShotTest, MessagesDoNotPutOffTheEndForever)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.notify("getTarnBatteryNum", "1"); });
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(runTool(service, {"--timeout", "0.2", "getMcuVersion"}).code, 4);
    EXPECT_GE(clock.elapsed(), 700);
    EXPECT_LT(clock.elapsed(), 5000);
}
