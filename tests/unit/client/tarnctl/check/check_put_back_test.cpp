#include "unit/client/tarnctl/check/check_fixture.h"

#include <QJsonDocument>

#include <csignal>

namespace tarnClientTest {

using std::chrono::milliseconds;

TEST_F(CheckTest, PutsBackWhenItIsInterrupted)
{
    values["getAccessoryType"] = "dock";
    // The second one comes while it puts back.
    instead = [this](const QString &, const QString &data) {
        if (data == "off" || (data == "on" && values["getDockLedStatus"] == "off"))
            std::raise(SIGINT);
        return false;
    };
    const ToolRun run = check({"set-dock-light", "set-power-mode"});
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(values["getDockLedStatus"], "on");
    EXPECT_EQ(sent().mid(sent().size() - 2), QStringList({"setDockLedStatus on", "getDockLedStatus "}));
    EXPECT_EQ(run.output.count("Interrupted: what was changed is put back, please wait."), 1);
    EXPECT_FALSE(run.output.contains("Do it later"));
    EXPECT_EQ(noted(), sent());
    EXPECT_FALSE(report().isEmpty());
}

TEST_F(CheckTest, ChangesNothingThatItCannotPutBack)
{
    values["getTarnPowerMode"] = "hide";
    EXPECT_EQ(check({"set-power-mode"}).code, 1);
    EXPECT_FALSE(service.commands().contains("setTarnPowerMode"));
}

TEST_F(CheckTest, SaysWhatCouldNotBePutBack)
{
    enum class Fault { Unanswered, Failed, Lost };
    for (const Fault fault : {Fault::Unanswered, Fault::Failed, Fault::Lost}) {
        values["getTarnPowerMode"] = "balance";
        instead = [this, fault, isLast = false](const QString &command, const QString &data) mutable {
            const bool isPutBack = isLast && command == "setTarnPowerMode" && data == "balance";
            isLast = isLast || (command == "setTarnPowerMode" && data == "low");
            if (isPutBack && fault == Fault::Failed) {
                const QJsonObject request = QJsonDocument::fromJson(service.requests().last()).object();
                service.answer(request, "result", "failed");
            } else if (isPutBack && fault == Fault::Lost) {
                service.stopListening();
                service.dropClient();
            }
            return isPutBack;
        };
        const ToolRun run = check({"--timeout", "2", "set-power-mode"});
        EXPECT_EQ(run.code, fault == Fault::Lost ? 4 : 1);
        EXPECT_EQ(
            run.output.count("This could not be put back. Do it later: tarnctl setTarnPowerMode balance\n"),
            1)
            << run.output.data();
    }
}

// The setter is answered all the same.
TEST_F(CheckTest, ReadsBackWhatItHasPutBack)
{
    times.settling = milliseconds(100);
    instead = [this](const QString &command, const QString &data) {
        const bool isIgnored = command == "setKVaneLedLight" && data == "77";
        if (isIgnored)
            service.write(service.requests().last());
        return isIgnored;
    };
    const ToolRun run = check({"set-kvane-light"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("    expected: 77\n    came:     255, after ")) << run.output.data();
    EXPECT_TRUE(run.output.contains("Do it later: tarnctl setKVaneLedLight 77\n"));
}

TEST_F(CheckTest, ReadsBackUntilTheValueHasComeAlsoAfterAnInterruption)
{
    int asked = 0;
    instead = [this, &asked](const QString &command, const QString &data) {
        if (data == "128")
            std::raise(SIGINT);
        const bool isPutBack = sent().contains("setKVaneLedLight 77");
        if (!isPutBack || command != "getKVaneLedLight" || ++asked > 3)
            return false;
        const QJsonObject request = QJsonDocument::fromJson(service.requests().last()).object();
        service.answer(request, "data", "128");
        return true;
    };
    const ToolRun run = check({"set-kvane-light"});
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(asked, 4);
    EXPECT_EQ(values["getKVaneLedLight"], "77");
    EXPECT_FALSE(run.output.contains("Do it later")) << run.output.data();
}

TEST_F(CheckTest, RemembersWhatTheServiceHasRead)
{
    bool isRead = false;
    instead = [this, &isRead](const QString &command, const QString &) {
        if (command != "getKVaneLedLight" || isRead)
            return false;
        isRead = true;
        const QJsonObject request = QJsonDocument::fromJson(service.requests().last()).object();
        service.answer(request, "data", "0");
        return true;
    };
    EXPECT_EQ(check({"set-kvane-light"}).code, 0);
    EXPECT_TRUE(isRead);
    EXPECT_EQ(values["getKVaneLedLight"], "77");
}

TEST_F(CheckTest, TellsWhatStaysOtherwiseAlsoAfterAnInterruption)
{
    instead = [](const QString &, const QString &data) {
        if (data == "OFF")
            std::raise(SIGINT);
        return false;
    };
    const ToolRun run = check({"set-smart-charging"});
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.output.contains("the five days until the service switches it on again begin anew"))
        << run.output.data();
}

} // namespace tarnClientTest
