#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/tool_run.h"

#include "client/tarnctl/stdin_reader.h"
#include "client/tarnctl/tarnctl.h"
#include "support/time_bound.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QRegularExpression>

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <sstream>

using namespace tarnClientTest;
using std::chrono::milliseconds;

namespace {

// An input without data until it is released.
class SilentBuffer : public std::streambuf
{
public:
    void release()
    {
        const std::lock_guard lock(mutex);
        released = true;
        changed.notify_all();
    }

protected:
    int_type underflow() override
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return released; });
        return traits_type::eof();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool released = false;
};

class SilentInput : public std::istream
{
public:
    SilentInput()
        : std::istream(nullptr)
    {
        rdbuf(&buffer);
    }
    void release() { buffer.release(); }

private:
    SilentBuffer buffer;
};

// A standard output whose reader has gone.
class ClosedBuffer : public std::streambuf
{ };

QByteArray withoutTimes(const QByteArray &output)
{
    static const QRegularExpression time(
        QStringLiteral(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )"), QRegularExpression::MultilineOption);
    return QString::fromUtf8(output).remove(time).toUtf8();
}

void notifyAtOnce(FakeService &service, int count)
{
    service.onConnection([&service, count] {
        for (int i = 1; i <= count; ++i)
            service.notify("getTarnBatteryNum", QString::number(i));
    });
}

} // namespace

TEST(TarnctlWatchTest, PrintsNotificationsWithTheirTime)
{
    FakeService service;
    notifyAtOnce(service, 2);
    const ToolRun run = runTool(service, {"watch", "--count", "2"});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.isEmpty());
    EXPECT_NE(withoutTimes(run.output), run.output);
    EXPECT_EQ(withoutTimes(run.output), "event getTarnBatteryNum 1\nevent getTarnBatteryNum 2\n");
}

TEST(TarnctlWatchTest, CountEndsItAmidGluedMessages)
{
    FakeService service;
    notifyAtOnce(service, 5);
    EXPECT_EQ(runTool(service, {"watch", "--count", "3"}).output.count('\n'), 3);
}

TEST(TarnctlWatchTest, ForEndsIt)
{
    FakeService service;
    notifyAtOnce(service, 1);
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = runTool(service, {"watch", "--for", "2"});
    EXPECT_EQ(run.code, 0);
    EXPECT_GE(clock.elapsed(), 1890); // a coarse timer may come a twentieth early
    EXPECT_EQ(run.output.count('\n'), 1);
}

TEST(TarnctlWatchTest, CountNotReachedInTime)
{
    FakeService service;
    notifyAtOnce(service, 1);
    const ToolRun run = runTool(service, {"watch", "--count", "2", "--for", "2"});
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.errors, "tarnctl: 1 of 2 notifications came within 2 s.\n");
}

TEST(TarnctlWatchTest, TypedCommandsGoOneByOne)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.later(milliseconds(30), [&service, request] {
            service.notify("getTarnBatteryNum", "9");
            const bool isAction = request.contains("data");
            service.answer(request, isAction ? "result" : "data", isAction ? "failed" : "1.23");
        });
    });
    const ToolRun run = runTool(
        service, {"watch"}, typed("getMcuVersion\n\n  setDockLedStatus   on \ngetMcuVersion\nquit\n"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(withoutTimes(run.output),
        "event getTarnBatteryNum 9\nanswer getMcuVersion 1.23\n"
        "event getTarnBatteryNum 9\nanswer setDockLedStatus failed\n"
        "event getTarnBatteryNum 9\nanswer getMcuVersion 1.23\n");
    // One request a read, or the service would not understand them.
    EXPECT_EQ(service.commands(), (QStringList {"getMcuVersion", "setDockLedStatus", "getMcuVersion"}));
}

TEST(TarnctlWatchTest, JsonShowsEveryMessageWithoutTag)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.notify("getTarnBatteryNum", "9");
        service.answer(request, "data", "1.23");
    });
    const ToolRun run = runTool(service, {"--json", "watch"}, typed("getMcuVersion\nquit\n"));
    EXPECT_EQ(run.output,
        "{\"cmd\":\"getTarnBatteryNum\",\"data\":\"9\"}\n{\"cmd\":\"getMcuVersion\",\"data\":\"1.23\"}\n");
}

TEST(TarnctlWatchTest, SeveralAnswerFieldsShareALine)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.write(compact(withField(
            withField(withField(request, "mcuVer", "1.23"), "hardwareVer", "2"), "accessoryCode", "4")));
    });
    EXPECT_EQ(withoutTimes(runTool(service, {"watch"}, typed("getMcuUpdateParameters\nquit\n")).output),
        "answer getMcuUpdateParameters mcuVer: 1.23, hardwareVer: 2, accessoryCode: 4\n");
}

TEST(TarnctlWatchTest, TypedMistakesAreExplainedAndNotSent)
{
    FakeService service;
    const ToolRun run = runTool(service, {"watch"},
        typed("getMcuVersio\nsetDockLedStatus ON\nhelp\nhelp getMcuVersion\nhelp nix\nquit\n"));
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.errors.contains("Did you mean getMcuVersion?"));
    EXPECT_TRUE(run.errors.contains("takes \"on\", written exactly so"));
    EXPECT_TRUE(run.errors.contains("Type one of these"));
    EXPECT_TRUE(run.errors.contains("Example:  tarnctl getMcuVersion"));
    EXPECT_TRUE(run.errors.contains("There is no command \"nix\"."));
}

TEST(TarnctlWatchTest, LastIsFollowedByTheNextCommandInAReadOfItsOwn)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        if (request.value("data").toString() != "last")
            service.answer(request, "data", "1.23");
    });
    const ToolRun run = runTool(service, {"watch"}, typed("powerModeControl last\ngetMcuVersion\nquit\n"));
    EXPECT_EQ(withoutTimes(run.output), "answer powerModeControl sent\nanswer getMcuVersion 1.23\n");
    EXPECT_EQ(service.commands(), (QStringList {"powerModeControl", "getMcuVersion"}));
}

TEST(TarnctlWatchTest, LastNeedsNoAnswerBeforeTheEnd)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.notify("changeAccessoryType", "dock"); });
    const ToolRun run = runTool(service, {"watch", "--count", "1"}, typed("powerModeControl last\n"));
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.isEmpty());
}

TEST(TarnctlWatchTest, AnswersToOthersAreNoNotifications)
{
    FakeService service;
    service.onConnection([&service] {
        service.write(R"({"cmd":"getMcuVersion","data":"1.23","id":"1-1"})");
        service.notify("changeAccessoryType", "dock");
    });
    const ToolRun run = runTool(service, {"watch", "--count", "1"});
    EXPECT_EQ(withoutTimes(run.output), "late-answer getMcuVersion 1.23\nevent changeAccessoryType dock\n");
}

TEST(TarnctlWatchTest, AnUnansweredCommandDoesNotEndIt)
{
    FakeService service;
    QJsonObject unanswered;
    service.onRequest([&](const QJsonObject &request) {
        if (unanswered.isEmpty()) {
            unanswered = request;
            return;
        }
        if (request.value("cmd").toString() == "getHardwareVersion")
            service.answer(unanswered, "data", "late");
        service.answer(request, "data", "2");
    });
    const ToolRun run =
        runTool(service, {"watch", "--timeout", "2"}, typed("getMcuVersion\ngetHardwareVersion\nquit\n"));
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.contains("No answer to getMcuVersion within 2 s."));
    EXPECT_TRUE(run.errors.contains("type reconnect"));
    EXPECT_EQ(withoutTimes(run.output), "late-answer getMcuVersion late\nanswer getHardwareVersion 2\n");
}

TEST(TarnctlWatchTest, TheEndOfATerminalsInputEndsIt)
{
    FakeService service;
    const ToolRun run = runTool(service, {"watch"}, typed("", true));
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.startsWith("Watching the pipe"));
}

TEST(TarnctlWatchTest, TheEndOfAPipedInputDoesNot)
{
    FakeService service;
    service.onConnection([&service] {
        service.later(milliseconds(200), [&service] { service.notify("changeAccessoryType", "dock"); });
    });
    const ToolRun run = runTool(service, {"watch", "--count", "1"}, typed(""));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(withoutTimes(run.output), "event changeAccessoryType dock\n");
}

TEST(TarnctlWatchTest, InterruptEndsItWithZeroWhileTheInputIsSilent)
{
    FakeService service;
    const auto input = std::make_shared<SilentInput>();
    service.onConnection([&service] { service.later(milliseconds(50), [] { std::raise(SIGINT); }); });
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = runTool(service, {"watch"}, {input, true});
    EXPECT_EQ(run.code, 0);
    EXPECT_LT(clock.elapsed(), tarnTest::allowedMs(3000));
    EXPECT_TRUE(tarnctl::StdinReader::hasThreadLeftBehind());
    input->release();
}

TEST(TarnctlWatchTest, CommandsThatWereNotSentInTimeAreToldAndCount)
{
    FakeService service;
    QStringList answered {"getHardwareVersion"};
    service.onRequest([&](const QJsonObject &request) {
        if (answered.contains(request.value("cmd").toString()))
            service.answer(request, "data", "1");
    });
    const ToolRun one = runTool(service, {"watch", "--for", "1.5"},
        typed("getHardwareVersion\ngetMcuVersion\n\n setDockLedStatus on\nquit\n"));
    EXPECT_EQ(one.code, 4);
    EXPECT_EQ(withoutTimes(one.output), "answer getHardwareVersion 1\n");
    EXPECT_EQ(one.errors,
        "tarnctl: The watching ends.\nNo answer to getMcuVersion has come yet.\n"
        "Not sent any more: setDockLedStatus on\n");

    service.onConnection([&service] {
        service.later(milliseconds(1500), [&service] { service.notify("changeAccessoryType", "dock"); });
    });
    const ToolRun several = runTool(service, {"watch", "--count", "1"},
        typed("getMcuVersion\ngetTarnBatteryNum\nhelp\ngetMcuVersion\nunknownToTarnctl\n"));
    EXPECT_EQ(several.code, 4);
    EXPECT_TRUE(several.errors.endsWith("Not sent any more: getTarnBatteryNum, and 2 after it.\n"))
        << several.errors.toStdString();

    answered << "getMcuVersion";
    service.onConnection([] {});
    const ToolRun none = runTool(service, {"watch", "--for", "1.5"}, typed("getMcuVersion\n"));
    EXPECT_EQ(none.code, 0);
    EXPECT_TRUE(none.errors.isEmpty());
}

TEST(TarnctlWatchTest, NoService)
{
    EXPECT_EQ(runTool({"--pipe", "tarnctlTestNobody", "watch"}).code, 3);
}

TEST(TarnctlWatchTest, ServiceGoesAway)
{
    FakeService service;
    service.onConnection(
        [&service] { service.later(milliseconds(30), [&service] { service.dropClient(); }); });
    const ToolRun run = runTool(service, {"watch"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: The service went away.\nStart it again"));
}

TEST(TarnctlWatchTest, ServiceGoesAwayBeforeAnAnswer)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.dropClient(); });
    const ToolRun run = runTool(service, {"watch"}, typed("getMcuVersion\n"));
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: The service went away before it answered getMcuVersion."));
}

TEST(TarnctlWatchTest, ReconnectWaitsForTheService)
{
    FakeService service;
    service.stopListening();
    service.later(milliseconds(100), [&service] { service.startListening(); });
    service.onConnection([&service] {
        if (service.connections() == 1)
            service.later(milliseconds(20), [&service] { service.dropClient(); });
        else
            service.notify("changeAccessoryType", "dock");
    });
    const ToolRun run = runTool(service, {"watch", "--reconnect", "--count", "1", "--for", "20"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(service.connections(), 2);
    EXPECT_TRUE(run.errors.contains("waiting for it to come back"));
}

TEST(TarnctlWatchTest, AtATerminalReconnectAndHelpDoNotWaitForAnAnswer)
{
    FakeService service;
    QJsonObject unanswered;
    service.onRequest([&](const QJsonObject &request) {
        if (service.connections() == 1) {
            unanswered = request;
            return;
        }
        service.answer(unanswered, "data", "late");
        service.answer(request, "data", "2");
    });
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = runTool(
        service, {"watch"}, typed("getMcuVersion\nhelp\nreconnect\ngetHardwareVersion\nquit\n", true));
    EXPECT_EQ(run.code, 0);
    EXPECT_LT(clock.elapsed(), 10000) << "waited for the end of the time limit";
    EXPECT_TRUE(run.errors.contains("or help COMMAND, reconnect, quit"));
    EXPECT_TRUE(run.errors.contains("if getMcuVersion is still answered"));
    EXPECT_EQ(withoutTimes(run.output), "late-answer getMcuVersion late\nanswer getHardwareVersion 2\n");
}

TEST(TarnctlWatchTest, InAScriptReconnectWaitsForTheAnswerBeforeItsNewConnection)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.later(milliseconds(200),
            [&service, request] { service.answer(request, "data", QString::number(service.connections())); });
    });
    const ToolRun run = runTool(service, {"watch"}, typed("getMcuVersion\nreconnect\ngetMcuVersion\nquit\n"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(withoutTimes(run.output), "answer getMcuVersion 1\nanswer getMcuVersion 2\n");
}

TEST(TarnctlWatchTest, AWordOfTheToolIsNotTaken)
{
    FakeService service;
    const ToolRun run = runTool(service, {"watch"}, typed("update-mcu kvane.bin\nquit\n", true));
    EXPECT_TRUE(
        run.errors.contains("\"update-mcu\" cannot be typed here; run \"tarnctl update-mcu\" by itself."));
    EXPECT_EQ(service.commands(), QStringList());
}

TEST(TarnctlWatchTest, EndsWhenNobodyReadsItsOutput)
{
    FakeService service;
    notifyAtOnce(service, 1);
    ClosedBuffer closed;
    std::ostream output(&closed);
    std::ostringstream errors;
    const int code = tarnctl::runTarnctl({"tarnctl", "--pipe", service.pipeName(), "watch", "--for", "20"},
        {std::make_shared<std::istringstream>(), output, errors, false});
    EXPECT_EQ(code, 0);
}
