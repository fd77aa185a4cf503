#include "unit/client/tarnctl/check/check_fixture.h"

#include <QJsonDocument>

namespace tarnClientTest {

using std::chrono::milliseconds;

TEST_F(CheckTest, FindsNothingOnASoundComputer)
{
    const ToolRun run = check({}, "\ny\ny\nn\n");
    EXPECT_EQ(run.code, 0) << run.output.data() << run.errors.data();
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.contains("\n 15 as expected\n  0 NOT as expected\n  0 NO ANSWER\n 11 skipped\n"))
        << run.output.data();
    EXPECT_TRUE(run.output.contains("  this needs the accessory dock, so it is left out\n  => skipped\n"));
    EXPECT_EQ(noted(), sent());
    EXPECT_EQ(values["getKVaneLedLight"], "77");
    EXPECT_EQ(values["getTarnPowerMode"], "balance");
    EXPECT_EQ(values["getSmartChargingStatus"], "OFF");
    EXPECT_EQ(sent().mid(sent().size() - 3),
        QStringList({"powerModeControl low", "powerModeControl first", "powerModeControl last"}));
    EXPECT_TRUE(report().contains("system: one of a test\n"));
    EXPECT_TRUE(report().contains("\n> y\n"));
}

TEST_F(CheckTest, ChangesNothingAfterANo)
{
    EXPECT_EQ(check({}, "\nn\nn\n").code, 0);
    for (const QString &command : service.commands())
        EXPECT_TRUE(command.startsWith("get")) << command.toStdString();
}

TEST_F(CheckTest, TakesTheEndOfTheInputForANo)
{
    const ToolRun nothing = check({}, "");
    EXPECT_EQ(nothing.code, 2);
    EXPECT_EQ(service.connections(), 0);
    EXPECT_EQ(check({}, "\n").code, 0);
    for (const QString &command : service.commands())
        EXPECT_TRUE(command.startsWith("get")) << command.toStdString();
}

TEST_F(CheckTest, TellsAnAnswerThatIsNotExpected)
{
    values["getTarnBatteryNum"] = "255";
    const ToolRun run = check({"battery", "charging"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("came:     255, after ")) << run.output.data();
    EXPECT_TRUE(run.output.contains("    This is not what was expected.\n  => NOT as expected\n"));
    EXPECT_TRUE(report().contains("  1 NOT as expected: battery\n"));
}

TEST_F(CheckTest, TellsALateAnswer)
{
    times.late = milliseconds(50);
    times.latePerMessage = milliseconds(0);
    instead = [this](const QString &command, const QString &) {
        if (command != "getTarnBatteryNum")
            return false;
        const QJsonObject request = QJsonDocument::fromJson(service.requests().last()).object();
        service.later(milliseconds(100), [this, request] { answer(request); });
        return true;
    };
    const ToolRun run = check({"battery"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("    This is late: it takes less than 0.1 s as a rule.\n"))
        << run.output.data();
}

TEST_F(CheckTest, AllowsTimeForEachMessageBeforeTheAnswer)
{
    times.late = milliseconds(50);
    instead = [this](const QString &command, const QString &) {
        if (command != "getTarnBatteryNum")
            return false;
        const QJsonObject request = QJsonDocument::fromJson(service.requests().last()).object();
        for (int message = 0; message < 20; ++message)
            service.notify("getTarnBatteryNum", "80");
        service.later(milliseconds(100), [this, request] { answer(request); });
        return true;
    };
    EXPECT_EQ(check({"battery"}).code, 0);
}

TEST_F(CheckTest, QuotesTheWarningsOfAStep)
{
    warn("read eeprom error");
    instead = [this](const QString &command, const QString &) {
        if (command == "getSmartChargingStatus")
            warn("readEeprom failed");
        return false;
    };
    const ToolRun run = check({"power-mode", "smart-charging"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("log:      2026-11-21 11:30:00.000 warning 0x7f2a readEeprom failed\n"));
    EXPECT_FALSE(run.output.contains("read eeprom error"));
    EXPECT_TRUE(report().contains("  1 NOT as expected: smart-charging\n")) << report().toStdString();
}

TEST_F(CheckTest, TakesWhatEyesHaveSeen)
{
    values["getAccessoryType"] = "dock";
    EXPECT_EQ(check({"set-dock-light"}, "\ny\nperhaps\ny\nn\n").code, 1);
    EXPECT_TRUE(report().contains("Please type y, n or s"));
    EXPECT_EQ(values["getDockLedStatus"], "on");
}

TEST_F(CheckTest, HidesSerialNumbersUnlessTheyAreWanted)
{
    const ToolRun run = check({"kvane-serial-number"});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.output.contains("CDAB8967452301"));
    EXPECT_TRUE(report().contains("came:     <serial number>, "));
    remove("function/" + files("*.report.txt").first());
    EXPECT_EQ(check({"--serial-numbers", "kvane-serial-number"}).code, 0);
    EXPECT_TRUE(report().contains("CDAB8967452301"));
}

TEST_F(CheckTest, NeedsAServiceAndStepsThatItKnows)
{
    const ToolRun unknown = check({"batery"});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(unknown.errors.contains("no step \"batery\"")) << unknown.errors.data();
    EXPECT_TRUE(unknown.errors.contains("\nbattery\n"));
    EXPECT_EQ(check({"--json"}).code, 2);
    service.stopListening();
    EXPECT_EQ(check({"battery"}).code, 3);
}

} // namespace tarnClientTest
