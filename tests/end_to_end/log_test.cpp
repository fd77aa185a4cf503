#include "end_to_end/running_service.h"
#include "end_to_end/test_system.h"
#include "support/child_process.h"

#include <QJsonObject>
#include <QRegularExpression>

class Log : public tarnTest::RunningService
{
protected:
    [[nodiscard]] QStringList fileLines() const
    {
        return QString::fromUtf8(service.read("log/TarnService.log")).split('\n', Qt::SkipEmptyParts);
    }
};

// Readers of the log rely on it that the service wrote each line.
TEST_F(Log, HasNoLineThatAClientWrote)
{
    const QString forged = QStringLiteral("\nforged line\r\nforged line\n");
    const QJsonObject requests[] = {
        {{"cmd", "getAccessoryType"}, {"field", forged}},
        {{"cmd", "getAccessoryType"}, {forged, "value"}},
        {{"cmd", "setDockLedStatus"}, {"data", forged}},
        {{"cmd", "setGraphicsRGB"}, {"data", forged}},
        {{"cmd", "powerModeControl"}, {"data", forged}},
        {{"cmd", "requestMcuUpdate"}, {"data", forged + ".bin"}},
        {{"cmd", "requestEcUpdate"}, {"data", forged + ".bin"}},
    };
    for (const QJsonObject &request : requests)
        EXPECT_FALSE(client.ask(request).isEmpty()) << request.value("cmd").toString().toStdString();

    client.write(R"({"cmd":"\nforged line\n"})"); // has no answer
    ASSERT_TRUE(client.waitConnected([this] { return service.log().contains("Unknown command: "); }, 30000));
    client.write("\nforged line\n");
    ASSERT_TRUE(
        client.waitConnected([this] { return service.log().contains("cmd is not a string."); }, 30000));

    EXPECT_EQ(service.logLines().filter("forged line").filter(QRegularExpression("^forged")), QStringList());
    EXPECT_GE(service.logLines().filter("forged line").size(), 9); // they are in the log, each in its line
    EXPECT_EQ(fileLines().filter(QRegularExpression("^(?!\\d{4}-)")), QStringList());
    EXPECT_GE(fileLines().filter("forged line").size(), 9);
}

// A line that comes from another thread at the same time may stand in another place.
TEST_F(Log, IsInAFileAsWell)
{
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    EXPECT_EQ(service.stop(), 0);
    QStringList printed = service.log().split('\n', Qt::SkipEmptyParts);
    QStringList kept;
    const QRegularExpression line(
        "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} (debug|info|warning) 0x[0-9a-f]+ (.*)$");
    for (const QString &whole : fileLines()) {
        const auto match = line.match(whole);
        ASSERT_TRUE(match.hasMatch()) << whole.toStdString();
        kept << match.captured(2);
    }
    EXPECT_EQ(kept.value(0), printed.value(0));
    EXPECT_TRUE(kept.contains("service is Finish!"));
    printed.sort();
    kept.sort();
    EXPECT_EQ(kept, printed);
}

TEST_F(Log, IsNotTouchedByARequestAboutTheService)
{
    const auto banners = [this] {
        return fileLines().filter("Service \"\\\"TarnService\\\"\" is").size();
    };
    EXPECT_EQ(banners(), 1);
    QProcess other;
    tarnTest::prepareForStop(other);
    other.start(service.path("TarnService" TARN_PROGRAM_SUFFIX), {"-version"});
    EXPECT_TRUE(tarnTest::waitForEnd(other, 30000));
    EXPECT_EQ(other.exitCode(), 0);
    EXPECT_EQ(banners(), 1);
}
