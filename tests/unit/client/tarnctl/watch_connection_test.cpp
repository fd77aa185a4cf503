#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/watch_run.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <csignal>

using namespace tarnClientTest;
using std::chrono::milliseconds;

namespace {

constexpr char silenceLine[] =
    "tarnctl: The service has fallen silent, as when another client has come and gone; connecting again.\n";
constexpr char takenOverLine[] =
    "tarnctl: The service falls silent again and again, because of another client or because it hangs; "
    "trying once a minute, and at once after reconnect.\n";

} // namespace

TEST(TarnctlWatchConnectionTest, WithoutReconnectItOnlyLooksOn)
{
    FakeService service;
    const ToolRun run = runWatch(service, {"--for", "0.3"}, typed("")); // ten times the quiet time
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.isEmpty());
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST(TarnctlWatchConnectionTest, SilenceIsToldAndEndedByANewConnection)
{
    FakeService service;
    talkFrom(service, 2);
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "20"}, typed(""));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, silenceLine);
    EXPECT_TRUE(run.output.endsWith(" event changeAccessoryType dock\n"));
    EXPECT_EQ(service.commands(), QStringList {"getAccessoryType"});
}

TEST(TarnctlWatchConnectionTest, SilenceThatStaysIsToldOnce)
{
    FakeService service;
    talkFrom(service, 6);
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "20"}, typed(""));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, QByteArray(silenceLine) + silenceLine + takenOverLine);
    EXPECT_EQ(service.connections(), 6);
}

TEST(TarnctlWatchConnectionTest, AfterAnUnansweredCommandThatShowsSilenceNobodyHasToReconnect)
{
    FakeService service;
    talkFrom(service, 2);
    tarn::ClientTimes times = watchTimes();
    times.quietTime = milliseconds(20000);
    const ToolRun run = runWatch(
        service, {"--timeout", "0.1", "--count", "1", "--for", "20"}, typed("getTarnBatteryNum\n"), times);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors,
        QByteArray(silenceLine)
            + "tarnctl: No answer to getTarnBatteryNum within 0.1 s.\nAnother client may have taken it: look "
              "at "
              "the service's log, or try again with a longer --timeout.\n");
}

TEST(TarnctlWatchConnectionTest, AfterSilenceAServiceThatIsGoneEndsIt)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.stopListening(); });
    const ToolRun run = runWatch(service, {"--timeout", "0.1", "--for", "20"}, typed("getTarnBatteryNum\n"));
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.startsWith(QByteArray(silenceLine) + "tarnctl: No answer to getTarnBatteryNum"))
        << run.errors.toStdString();
    EXPECT_TRUE(
        run.errors.contains("\ntarnctl: No service answers on the pipe \"" + service.pipeName().toUtf8()))
        << run.errors.toStdString();
}

TEST(TarnctlWatchConnectionTest, AUserWithoutAServiceIsToldThatNothingIsSent)
{
    FakeService service;
    service.stopListening();
    const ToolRun run = runWatch(service, {"--reconnect"}, typed("getMcuVersion\nquit\n", true));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, "tarnctl: getMcuVersion was not sent. There is no connection to the service.\n");
}

TEST(TarnctlWatchConnectionTest, AUserWithoutAServiceNeedNotWaitForReconnectAndQuit)
{
    FakeService service;
    service.stopListening();
    tarn::ClientTimes times = watchTimes();
    times.connectionWait = milliseconds(20000);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "20"},
        typed("reconnect\ngetMcuVersion\nreconnect\nquit\n", true), times);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, "Connecting again.\nConnecting again; getMcuVersion has not been sent.\n");
}

TEST(TarnctlWatchConnectionTest, AScriptsCommandsWaitForTheService)
{
    FakeService service;
    service.stopListening();
    service.later(milliseconds(100), [&service] { service.startListening(); });
    talkFrom(service, 1);
    tarn::ClientTimes times = watchTimes();
    times.firstRetry = milliseconds(150);
    const ToolRun run =
        runWatch(service, {"--reconnect", "--for", "20"}, typed("getMcuVersion\nquit\n"), times);
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.output.endsWith(" answer getMcuVersion k_vane\n")) << run.output.toStdString();
    EXPECT_TRUE(run.errors.isEmpty()) << run.errors.toStdString();
}

TEST(TarnctlWatchConnectionTest, WithReconnectAServiceThatLeavesBeforeAnAnswerIsToldOnce)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.dropClient(); });
    const ToolRun run =
        runWatch(service, {"--reconnect"}, typed("getMcuVersion\nquit\n", true), tarn::ClientTimes());
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.endsWith(
        "quit.\ntarnctl: The service went away before it answered getMcuVersion; waiting for it to come "
        "back.\n"))
        << run.errors.toStdString();
}

TEST(TarnctlWatchConnectionTest, ReconnectLetsTheServiceReadWhatItDoesNotAnswer)
{
    FakeService service;
    talkFrom(service, 2);
    tarn::ClientTimes times = watchTimes();
    times.quietTime = milliseconds(20000);
    const ToolRun run = runWatch(service, {"--for", "20"},
        typed("powerModeControl last\nreconnect\ngetMcuVersion\nquit\n", true), times);
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.endsWith("Connecting again.\n")) << run.errors.toStdString();
    EXPECT_TRUE(run.output.contains(" answer powerModeControl sent\n")) << run.output.toStdString();
    EXPECT_TRUE(run.output.endsWith(" answer getMcuVersion k_vane\n")) << run.output.toStdString();
}

TEST(TarnctlWatchConnectionTest, ARivalForTheServiceIsToldOnce)
{
    FakeService service;
    talkFrom(service, 7);
    service.onRequest([&service, answeredOn = 3](const QJsonObject &request) mutable {
        // From the fourth connection on the first question on each is answered.
        if (service.connections() > std::exchange(answeredOn, std::max(answeredOn, service.connections())))
            service.answer(request, "data", "k_vane");
    });
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "20"}, typed(""));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, QByteArray(silenceLine) + silenceLine + takenOverLine);
    EXPECT_EQ(service.connections(), 7);
}

TEST(TarnctlWatchConnectionTest, SilenceAfterALongTalkIsToldAnew)
{
    FakeService service;
    QElapsedTimer talk;
    service.onConnection([&] {
        if (service.connections() == 4)
            talk.start();
        else if (service.connections() == 7)
            service.notify("changeAccessoryType", "dock");
    });
    service.onRequest([&](const QJsonObject &request) {
        if (service.connections() == 4 && !talk.hasExpired(3500))
            service.answer(request, "data", "k_vane");
    });
    tarn::ClientTimes times = watchTimes();
    times.lossMemory = milliseconds(3000);
    times.questionLimit = milliseconds(1200); // the answers come within it although the machine pauses
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "60"}, typed(""), times);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors,
        QByteArray(silenceLine) + silenceLine + takenOverLine + silenceLine + silenceLine + takenOverLine);
}

TEST(TarnctlWatchConnectionTest, SilenceAfterTheServiceHasGoneIsToldAnew)
{
    FakeService service;
    service.onConnection([&service] {
        if (service.connections() == 6)
            service.notify("changeAccessoryType", "dock");
    });
    service.onRequest([&service](const QJsonObject &) {
        if (service.connections() == 4)
            service.dropClient();
    });
    tarn::ClientTimes times = watchTimes();
    times.firstRetry = milliseconds(20);
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "20"}, typed(""), times);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors,
        QByteArray(silenceLine) + silenceLine + takenOverLine
            + "tarnctl: The service went away; waiting for it to come back.\n" + takenOverLine);
}

TEST(TarnctlWatchConnectionTest, VerboseShowsGarbage)
{
    FakeService service;
    service.onConnection([&service] {
        service.write("oops");
        service.notify("changeAccessoryType", "dock");
    });
    EXPECT_EQ(runWatch(service, {"--verbose", "--count", "1", "--for", "20"}, typed("")).errors,
        "no JSON (4 bytes): oops\n");
    EXPECT_TRUE(runWatch(service, {"--count", "1", "--for", "20"}, typed("")).errors.isEmpty());
}

TEST(TarnctlWatchConnectionTest, InterruptEndsItWhileItConnects)
{
    FakeService service;
    service.stopListening();
    service.later(milliseconds(100), [] { std::raise(SIGINT); });
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "5"}, typed(""));
    EXPECT_EQ(run.code, 0); // 4 at the end of the time
    EXPECT_TRUE(run.errors.isEmpty());
}

TEST(TarnctlWatchConnectionTest, SilenceAfterFailedAttemptsToConnectIsToldAnew)
{
    FakeService service;
    service.onConnection([&service] {
        if (service.connections() == 5)
            service.notify("changeAccessoryType", "dock");
    });
    service.onRequest([&service](const QJsonObject &) {
        if (service.connections() == 3) {
            service.stopListening();
            service.later(milliseconds(2500), [&service] { service.startListening(); });
        }
    });
    const ToolRun run = runWatch(service, {"--reconnect", "--count", "1", "--for", "60"}, typed(""));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, QByteArray(silenceLine) + silenceLine + takenOverLine + takenOverLine);
}

TEST(TarnctlWatchConnectionTest, SilenceAfterReconnectIsToldAnew)
{
    FakeService service;
    const auto input = std::make_shared<TypedInput>();
    service.onRequest([&](const QJsonObject &) {
        const bool isThird = service.connections() % 3 == 0;
        const QByteArray line = service.connections() == 3 ? "reconnect\n" : "quit\n";
        if (isThird)
            service.later(milliseconds(2000), [input, line] { input->type(line); });
    });
    tarn::ClientTimes times = watchTimes();
    times.takenOverPause = milliseconds(20000);
    const ToolRun run = runWatch(service, {"--reconnect", "--for", "60"}, {input, true}, times);
    input->end();
    EXPECT_EQ(run.code, 0);
    const QByteArray lines = QByteArray(silenceLine) + silenceLine + takenOverLine;
    EXPECT_TRUE(run.errors.endsWith("quit.\n" + lines + "Connecting again.\n" + lines))
        << run.errors.toStdString();
}
