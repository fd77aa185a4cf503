#include "unit/client/tarnctl/update_command_fixture.h"

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::FirmwareKind;

TEST_F(TarnctlUpdateTest, WithoutAServiceNothingIsCopied)
{
    service.pipe.stopListening();
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: No service answers on the pipe"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, NoAnswerBeforeTheUpdate)
{
    service.silentAt = "getAccessoryType";
    const ToolRun mcu = update(FirmwareKind::Mcu, {"--timeout", "2"});
    EXPECT_EQ(mcu.code, 4);
    EXPECT_TRUE(mcu.errors.contains("No answer to getAccessoryType within 2 s."));
    EXPECT_TRUE(mcu.errors.contains("\nNothing has been touched.\n"));

    // The EC is asked for before the file can be taken.
    service.silentAt = "getMcuVersion";
    const ToolRun reserved = update(FirmwareKind::Mcu, {"--timeout", "2"});
    EXPECT_EQ(reserved.code, 4);
    EXPECT_TRUE(
        reserved.errors.contains("No answer to getMcuVersion within 2 s.\nFirst see whether the EC is"))
        << reserved.errors.toStdString();
    EXPECT_TRUE(reserved.errors.contains("\nNothing has been touched.\n"));
    EXPECT_FALSE(service.pipe.commands().contains("requestMcuUpdate"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, NoAnswerToTheUpdateLeavesTheFileToTheService)
{
    service.silentAt = "requestMcuUpdate";
    const ToolRun mcu = update(FirmwareKind::Mcu, {"--timeout", "2"});
    EXPECT_EQ(mcu.code, 4);
    EXPECT_TRUE(mcu.errors.contains("The service goes on with the update."));
    EXPECT_TRUE(mcu.errors.contains("The copy stays in the download folder"));
    EXPECT_EQ(folders.downloadNames(), placed);

    service.silentAt = "requestEcUpdate";
    const ToolRun ec = update(FirmwareKind::Ec, {"--timeout", "2"});
    EXPECT_EQ(ec.code, 4);
    EXPECT_TRUE(ec.errors.contains("then restart the computer."));
    // It lay there already.
    EXPECT_FALSE(ec.errors.contains("The copy stays in the download folder"));
    EXPECT_EQ(folders.downloadNames(), placed);
}

namespace {

struct Departure
{
    FirmwareKind kind;
    const char *command;
    const char *text;
};

// The name that a report shows.
void PrintTo(const Departure &value, std::ostream *out)
{
    *out << value.command;
}

class TarnctlUpdateDepartures : public TarnctlUpdateTest, public ::testing::WithParamInterface<Departure>
{ };

} // namespace

TEST_P(TarnctlUpdateDepartures, EndWithThreeAndAdvice)
{
    service.leavingAt = GetParam().command;
    const ToolRun run = update(GetParam().kind);
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_EQ(service.pipe.commands().last(), service.leavingAt);
    EXPECT_TRUE(run.errors.contains("went away before it answered " + service.leavingAt.toUtf8()));
    EXPECT_TRUE(run.errors.contains(GetParam().text)) << run.errors.toStdString();
    EXPECT_TRUE(
        run.errors.endsWith("\nStart it again with ./run, or the service \"Tarn Service\" on Windows.\n"));
    // The service has gone, so it cannot take the file.
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Steps, TarnctlUpdateDepartures,
    ::testing::Values(Departure {FirmwareKind::Mcu, "getAccessoryType", "Nothing has been touched."},
        Departure {FirmwareKind::Mcu, "requestMcuUpdate", "may be left in its boot loader"},
        Departure {FirmwareKind::Mcu, "getMcuVersion", "Nothing has been touched."},
        Departure {FirmwareKind::Ec, "requestEcUpdate", "If the EC tool runs, it goes on until it is done"}));

TEST_F(TarnctlUpdateTest, AServiceThatGoesBetweenTwoRequestsAndStaysAwayHasTouchedNothing)
{
    times.connectionWait = milliseconds(2000);
    askingPause = milliseconds(2000);
    service.answers["getAccessoryType"] = "disconnected"; // so it will be asked again
    service.beforeAnswer = [this](const QString &command) {
        if (command != "getAccessoryType")
            return;
        service.pipe.later(milliseconds(100), [this] {
            service.pipe.stopListening();
            service.pipe.dropClient();
        });
    };
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(service.pipe.commands(), QStringList({"getMcuVersion", "getAccessoryType"}));
    EXPECT_TRUE(
        run.errors.endsWith("\ntarnctl: There is no connection to the service.\n"
                            "Nothing has been touched.\n"
                            "Start it again with ./run, or the service \"Tarn Service\" on Windows.\n"))
        << run.errors.toStdString();
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, AnInterruptOfTheUpdateLeavesItToTheService)
{
    service.silentAt = "requestMcuUpdate";
    service.pipe.onConnection([this] { service.pipe.later(milliseconds(200), [] { std::raise(SIGINT); }); });
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(service.pipe.commands(), mcuCommands);
    EXPECT_TRUE(run.errors.contains("tarnctl: Interrupted before the service answered requestMcuUpdate.\n"
                                    "The service goes on with the update."))
        << run.errors.toStdString();
    EXPECT_EQ(folders.downloadNames(), placed);
}

TEST_F(TarnctlUpdateTest, AnInterruptBetweenTheStepsStopsBeforeTheNext)
{
    interruptedAt = "getMcuVersion";
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(
        run.errors.contains("Interrupted before getAccessoryType was sent.\nNothing has been touched.\n"))
        << run.errors.toStdString();
    EXPECT_EQ(service.pipe.commands(), QStringList {"getMcuVersion"});
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, AnInterruptWhileConnectingSendsNothing)
{
    service.pipe.later(milliseconds(0), [] { std::raise(SIGINT); });
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(
        run.errors.contains("Interrupted before getMcuVersion was sent.\nNothing has been touched.\n"))
        << run.errors.toStdString();
    EXPECT_TRUE(service.pipe.requests().isEmpty());
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, AnInterruptBetweenTwoQuestionsAsksNoMore)
{
    service.answers["getAccessoryType"] = "disconnected";
    askingPause = milliseconds(20000);
    service.beforeAnswer = [this](const QString &command) {
        if (command == "getAccessoryType")
            service.pipe.later(milliseconds(100), [] { std::raise(SIGINT); });
    };
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(
        run.errors.contains("Interrupted before getAccessoryType was sent.\nNothing has been touched.\n"))
        << run.errors.toStdString();
    EXPECT_EQ(service.pipe.commands(), (QStringList {"getMcuVersion", "getAccessoryType"}));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}
