#include "end_to_end/running_service.h"

#include <QJsonObject>
#include <QRegularExpression>

using Log = tarnTest::RunningService;

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
}
