#include "client/tarnctl/raw_exchange.h"
#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/tool_run.h"

#include <gtest/gtest.h>

#include <QTimer>

#include <sstream>

using namespace tarnClientTest;
using std::chrono::milliseconds;

namespace {

// Has a service answer each request and say something of its own soon after.
void notifyAfterAnswer(FakeService &service)
{
    service.onRequest([&service](const QJsonObject &request) {
        service.answer(request, "data", "x");
        service.later(milliseconds(50), [&service] { service.notify("b", "2"); });
    });
}

} // namespace

TEST(TarnctlRawTest, AnEchoHasEveryField)
{
    const QJsonObject request {{"cmd", "a"}, {"n", 1}};
    EXPECT_TRUE(tarnctl::echoes({{"cmd", "a"}, {"data", "x"}, {"n", 1}}, request));
    EXPECT_FALSE(tarnctl::echoes({{"cmd", "a"}, {"data", "x"}}, request));
    EXPECT_FALSE(tarnctl::echoes({{"cmd", "a"}, {"n", 2}}, request));
    EXPECT_FALSE(tarnctl::echoes({{"cmd", "a"}}, {}));
}

TEST(TarnctlRawTest, SendsTheBytesAndPrintsWhatComesBack)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.write(R"({"cmd":"changeAccessoryType", "data":"dock"})");
        service.answer(request, "data", "1.23");
    });
    const QString text = R"( {"mine" : 7, "cmd":"getMcuVersion"} )";
    const ToolRun run = runTool(service, {"raw", text});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(service.requests(), QByteArrayList {text.toUtf8()});
    EXPECT_EQ(run.output,
        "{\"cmd\":\"changeAccessoryType\", \"data\":\"dock\"}\n"
        "{\"cmd\":\"getMcuVersion\",\"data\":\"1.23\",\"mine\":7}\n");
}

TEST(TarnctlRawTest, SendsWhatIsNoJson)
{
    FakeService service;
    const ToolRun run = runTool(service, {"--timeout", "1", "raw", "not json"});
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(service.requests(), QByteArrayList {"not json"});
    EXPECT_TRUE(run.errors.startsWith("tarnctl: Nothing came back within 1 s."));
}

TEST(TarnctlRawTest, TakesTheTextFromTheInput)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) { service.answer(request, "data", "x"); });
    const ToolRun run = runTool(service, {"raw", "-"}, typed("{\"cmd\":\n\"a\"}\n"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(service.requests(), QByteArrayList {"{\"cmd\":\n\"a\"}\n"});
}

TEST(TarnctlRawTest, SendsMoreThanTheServiceTakesInOnePiece)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) { service.answer(request, "data", "x"); });
    const QString text = "{\"cmd\":\"" + QString(5000, u'a') + "\"}";
    EXPECT_EQ(runTool(service, {"raw", text}).code, 0);
    EXPECT_EQ(service.requests(), QByteArrayList {text.toUtf8()});
}

TEST(TarnctlRawTest, NoBytesAreAMistake)
{
    FakeService service;
    for (const ToolRun &run : {runTool(service, {"raw", ""}), runTool(service, {"raw", "-"}, typed(""))}) {
        EXPECT_EQ(run.code, 2);
        EXPECT_EQ(run.errors, "tarnctl: raw was given no bytes, so there is nothing to send.\n");
    }
    EXPECT_EQ(service.connections(), 0);
}

TEST(TarnctlRawTest, ShowsGarbageOnTheErrorOutput)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        service.write("oops");
        service.answer(request, "data", "x");
    });
    const ToolRun run = runTool(service, {"raw", R"({"cmd":"a"})"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, "no JSON (4 bytes): oops\n");
}

TEST(TarnctlRawTest, CountGoesOnPastTheAnswer)
{
    FakeService service;
    notifyAfterAnswer(service);
    const ToolRun run = runTool(service, {"raw", R"({"cmd":"a"})", "--count", "2"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "{\"cmd\":\"a\",\"data\":\"x\"}\n{\"cmd\":\"b\",\"data\":\"2\"}\n");
}

TEST(TarnctlRawTest, ForListensThatLong)
{
    FakeService service;
    notifyAfterAnswer(service);
    const ToolRun run = runTool(service, {"raw", R"({"cmd":"a"})", "--for", "2"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output.count('\n'), 2);
}

TEST(TarnctlRawTest, TooFewMessagesInTime)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) { service.answer(request, "data", "x"); });
    const ToolRun run = runTool(service, {"raw", R"({"cmd":"a"})", "--count", "2", "--for", "2"});
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.errors.contains("1 message(s) came back"));
}

TEST(TarnctlRawTest, ServiceAbsentOrLeaving)
{
    EXPECT_EQ(runTool({"--pipe", "tarnctlTestNobody", "raw", "{}"}).code, 3);
    FakeService service;
    service.onRequest([&service](const QJsonObject &) { service.dropClient(); });
    EXPECT_EQ(runTool(service, {"raw", "{}"}).code, 3);
}

TEST(TarnctlRawTest, NothingFollowsItsEnd)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) { service.answer(request, "data", "x"); });
    const tarnctl::ToolOptions options =
        tarnctl::parseOptions({"tarnctl", "--pipe", service.pipeName(), "--timeout", "0.5", "raw", "{}"})
            .options;
    std::ostringstream output;
    std::ostringstream errors;
    tarnctl::ToolStreams streams {std::make_shared<std::istringstream>(), output, errors, false};
    tarnctl::RawExchange exchange(options, streams, R"({"cmd":"a"})");
    int connectionsAfterwards = -1;
    QObject::connect(&exchange, &tarnctl::Task::finished, &service, [&] {
        QEventLoop loop;
        QTimer::singleShot(1000, &loop, &QEventLoop::quit); // the time limit passes
        loop.exec();
        connectionsAfterwards = service.openConnections();
    });
    EXPECT_EQ(exchange.run(), tarnctl::ExitCode::Done);
    EXPECT_EQ(errors.str(), "");
    EXPECT_EQ(connectionsAfterwards, 0);
}
