#include "firmware_update_fixture.h"

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarnClient::ecUpdatePlan;
using tarnClient::mcuUpdatePlan;
using tarnClient::UpdatePlan;

TEST_F(TarnctlUpdateTest, WithoutAServiceNothingIsCopied)
{
    service.stopListening();
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: No service answers on the pipe"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, NoAnswerBeforeTheUpdate)
{
    silentAt = "getAccessoryType";
    const ToolRun mcu = update(mcuUpdatePlan(), {"--timeout", "2"});
    EXPECT_EQ(mcu.code, 4);
    EXPECT_TRUE(mcu.errors.contains("No answer to getAccessoryType within 2 s."));
    EXPECT_TRUE(mcu.errors.contains("\nNothing has been touched.\n"));

    // The EC is asked for before the file can be taken.
    silentAt = "getMcuVersion";
    const ToolRun reserved = update(mcuUpdatePlan(), {"--timeout", "2"});
    EXPECT_EQ(reserved.code, 4);
    EXPECT_TRUE(
        reserved.errors.contains("No answer to getMcuVersion within 2 s.\nFirst see whether the EC is"))
        << reserved.errors.toStdString();
    EXPECT_TRUE(reserved.errors.contains("\nNothing has been touched.\n"));
    EXPECT_FALSE(service.commands().contains("requestMcuUpdate"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, NoAnswerToTheUpdateLeavesTheFileToTheService)
{
    silentAt = "requestMcuUpdate";
    const ToolRun mcu = update(mcuUpdatePlan(), {"--timeout", "2"});
    EXPECT_EQ(mcu.code, 4);
    EXPECT_TRUE(mcu.errors.contains("The service goes on with the update."));
    EXPECT_TRUE(mcu.errors.contains("The copy stays in the download folder"));
    EXPECT_EQ(folders.downloadNames(), placed);

    silentAt = "requestEcUpdate";
    const ToolRun ec = update(ecUpdatePlan(), {"--timeout", "2"});
    EXPECT_EQ(ec.code, 4);
    EXPECT_TRUE(ec.errors.contains("then restart the computer."));
    // It lay there already.
    EXPECT_FALSE(ec.errors.contains("The copy stays in the download folder"));
    EXPECT_EQ(folders.downloadNames(), placed);
}

namespace {

struct Departure
{
    const UpdatePlan &plan;
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
    leavingAt = GetParam().command;
    const ToolRun run = update(GetParam().plan);
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_EQ(service.commands().last(), leavingAt);
    EXPECT_TRUE(run.errors.contains("went away before it answered " + leavingAt.toUtf8()));
    EXPECT_TRUE(run.errors.contains(GetParam().text)) << run.errors.toStdString();
    // The service has gone, so it cannot take the file.
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Steps, TarnctlUpdateDepartures,
    ::testing::Values(Departure {mcuUpdatePlan(), "getAccessoryType", "Nothing has been touched."},
        Departure {mcuUpdatePlan(), "requestMcuUpdate", "may be left in its boot loader"},
        Departure {mcuUpdatePlan(), "getMcuVersion", "Nothing has been touched."},
        Departure {ecUpdatePlan(), "requestEcUpdate", "If the EC tool runs, it goes on until it is done"}));

TEST_F(TarnctlUpdateTest, AnInterruptOfTheUpdateLeavesItToTheService)
{
    silentAt = "requestMcuUpdate";
    service.onConnection([this] { service.later(milliseconds(200), [] { std::raise(SIGINT); }); });
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(service.commands(), mcuCommands);
    EXPECT_TRUE(run.errors.contains("tarnctl: Interrupted before the service answered requestMcuUpdate.\n"
                                    "The service goes on with the update."))
        << run.errors.toStdString();
    EXPECT_EQ(folders.downloadNames(), placed);
}

TEST_F(TarnctlUpdateTest, AnInterruptBetweenTheStepsStopsBeforeTheNext)
{
    interruptedAt = "getMcuVersion";
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(
        run.errors.contains("Interrupted before getAccessoryType was sent.\nNothing has been touched.\n"))
        << run.errors.toStdString();
    EXPECT_EQ(service.commands(), QStringList {"getMcuVersion"});
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}
