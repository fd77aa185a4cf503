#include "unit/client/tarnctl/check/check_fixture.h"

namespace tarnClientTest {

TEST_F(CheckTest, EndsWhenTheEcDoesNotAnswer)
{
    instead = [](const QString &command, const QString &) {
        return command == "getMcuVersion" || command == "getHardwareVersion";
    };
    const ToolRun run = check({"--timeout", "2", "versions", "battery"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("The EC does not answer, so the check ends here.")) << run.output.data();
    EXPECT_TRUE(report().contains("  1 NO ANSWER: versions\n  1 skipped\n")) << report().toStdString();
    EXPECT_FALSE(service.commands().contains("getTarnBatteryNum"));
    EXPECT_TRUE(noted().contains("getMcuVersion ") && noted().contains("getHardwareVersion "));
}

TEST_F(CheckTest, EndsWhenItIsDisplaced)
{
    bool isDisplaced = false;
    instead = [&isDisplaced](const QString &command, const QString &) {
        isDisplaced = isDisplaced || command == "getTarnBatteryNum";
        return isDisplaced;
    };
    const ToolRun run = check({"--timeout", "2", "battery", "charging"});
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.output.contains("The service does not talk to tarnctl any more")) << run.output.data();
    EXPECT_FALSE(service.commands().contains("getTarnChargingStatus"));
    EXPECT_TRUE(report().contains("  1 NO ANSWER: battery\n"));
}

// Also when it is answered again on the next connection.
TEST_F(CheckTest, EndsAfterAnotherClientHasComeAndGone)
{
    bool isDisplaced = false;
    instead = [&](const QString &command, const QString &) {
        isDisplaced = (isDisplaced || command == "getTarnBatteryNum") && service.connections() == 1;
        return isDisplaced;
    };
    const ToolRun run = check({"--timeout", "5", "battery", "charging"});
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(service.connections(), 2);
    EXPECT_TRUE(run.output.contains("as when another client has come and gone")) << run.output.data();
    EXPECT_FALSE(service.commands().contains("getTarnChargingStatus"));
}

TEST_F(CheckTest, EndsWithTheService)
{
    instead = [this](const QString &command, const QString &data) {
        if (command != "setTarnPowerMode" || data != "low")
            return false;
        service.stopListening();
        service.dropClient();
        return true;
    };
    const ToolRun run = check({"set-power-mode", "set-smart-charging"});
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.output.contains("The service has gone, so the check ends here.")) << run.output.data();
    EXPECT_TRUE(run.output.contains("Do it later: tarnctl setTarnPowerMode balance\n"));
    EXPECT_FALSE(report().isEmpty());
}

} // namespace tarnClientTest
