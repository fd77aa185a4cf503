#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/watch_run.h"

#include <gtest/gtest.h>

using namespace tarnClientTest;
using std::chrono::milliseconds;

// What becomes of a command that has not been written or not been answered when something comes in between.

TEST(TarnctlWatchCommandsTest, AScriptsCommandBehindAQuestionOutlivesTheService)
{
    FakeService service;
    const auto input = std::make_shared<TypedInput>();
    bool isBack = false;
    service.onRequest([&](const QJsonObject &request) {
        if (isBack) {
            service.answer(request, "data", "k_vane");
            return;
        }
        input->type("getMcuVersion\nquit\n");
        service.later(milliseconds(300), [&] {
            service.stopListening();
            service.dropClient();
        });
        service.later(milliseconds(600), [&] {
            isBack = true;
            service.startListening();
        });
    });
    tarn::ClientTimes times = watchTimes();
    times.questionLimit = milliseconds(20000);
    times.firstRetry = milliseconds(150);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "20"}, {input}, times);
    input->end();
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, "tarnctl: The service went away; waiting for it to come back.\n");
    EXPECT_TRUE(run.output.endsWith(" answer getMcuVersion k_vane\n")) << run.output.toStdString();
}

TEST(TarnctlWatchCommandsTest, AScriptsCommandBehindAQuestionOutlivesTheThirdSilence)
{
    FakeService service;
    const auto input = std::make_shared<TypedInput>();
    service.onRequest([&](const QJsonObject &request) {
        if (service.connections() == 3)
            input->type("getMcuVersion\nquit\n");
        else if (service.connections() > 3)
            service.answer(request, "data", "k_vane");
    });
    tarn::ClientTimes times = watchTimes();
    times.questionLimit = milliseconds(300);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "20"}, {input}, times);
    input->end();
    EXPECT_EQ(run.code, 0);
    EXPECT_FALSE(run.errors.contains("not sent")) << run.errors.toStdString();
    EXPECT_TRUE(run.output.endsWith(" answer getMcuVersion k_vane\n")) << run.output.toStdString();
}

TEST(TarnctlWatchCommandsTest, NoAnswerIsMissedOfACommandThatGetsNone)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.dropClient(); });
    tarn::ClientTimes times = watchTimes();
    times.quietTime = times.connectionWait = milliseconds(20000);
    const ToolRun ending = runWatch(service, {}, typed("powerModeControl last\n"), times);
    EXPECT_EQ(ending.code, 3);
    EXPECT_TRUE(ending.errors.startsWith(
        "tarnctl: The service went away just after powerModeControl was sent.\nStart it again"))
        << ending.errors.toStdString();

    const ToolRun waiting =
        runWatch(service, {"--reconnect"}, typed("powerModeControl last\nquit\n", true), times);
    EXPECT_EQ(waiting.code, 0);
    EXPECT_TRUE(
        waiting.errors.endsWith("tarnctl: The service went away just after powerModeControl was sent; "
                                "waiting for it to come back.\n"))
        << waiting.errors.toStdString();
}

TEST(TarnctlWatchCommandsTest, NoAnswerIsMissedOfACommandThatWasNotSent)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        if (request.value("cmd").toString() == "getAccessoryType")
            service.dropClient();
    });
    const ToolRun run =
        runWatch(service, {"--timeout", "0.1"}, typed("getMcuVersion\nsetDockLedStatus on\n"));
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(service.commands(), (QStringList {"getMcuVersion", "getAccessoryType"}));
    EXPECT_TRUE(run.errors.contains("\ntarnctl: The service went away.\nNot sent any more: setDockLedStatus "
                                    "on\nStart it again"))
        << run.errors.toStdString();
}

TEST(TarnctlWatchCommandsTest, AnUnwrittenCommandCountsAtTheEnd)
{
    FakeService service;
    service.stopListening();
    tarn::ClientTimes times = watchTimes();
    times.connectionWait = milliseconds(20000);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "0.5"},
        typed("powerModeControl last\ngetMcuVersion\n", true), times);
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.errors,
        "tarnctl: The watching ends.\nNot sent any more: powerModeControl last, and 1 after it.\n");
}

TEST(TarnctlWatchCommandsTest, ReconnectNeedNotWaitForTheClientsQuestion)
{
    FakeService service;
    const auto input = std::make_shared<TypedInput>();
    service.onRequest([&](const QJsonObject &request) {
        if (service.connections() > 1)
            service.answer(request, "data", "k_vane");
        else
            input->type("getMcuVersion\nreconnect\nquit\n");
    });
    tarn::ClientTimes times = watchTimes();
    times.questionLimit = milliseconds(20000);
    times.connectionWait = milliseconds(20000);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "10"}, {input, true}, times);
    input->end();
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.endsWith("quit.\nConnecting again, then sending getMcuVersion.\n"))
        << run.errors.toStdString();
    EXPECT_EQ(service.connections(), 2);
}

TEST(TarnctlWatchCommandsTest, AServiceThatLeavesBeforeACommandIsSentIsToldAtOnce)
{
    FakeService service;
    const auto input = std::make_shared<TypedInput>();
    service.onRequest([&](const QJsonObject &) {
        if (service.connections() > 1)
            return;
        input->type("getMcuVersion\n");
        service.later(milliseconds(300), [&] {
            service.stopListening();
            service.dropClient();
        });
    });
    tarn::ClientTimes times = watchTimes();
    times.questionLimit = milliseconds(20000);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "1.5"}, {input, true}, times);
    input->end();
    EXPECT_TRUE(run.errors.endsWith("quit.\ntarnctl: The service went away; waiting for it to come back.\n"
                                    "tarnctl: getMcuVersion was not sent. There is no connection to the "
                                    "service.\n"))
        << run.errors.toStdString();
}
