#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

using namespace tarnctl;

using VersionsCheck = tarnClientTest::Diagnosis;

TEST_F(VersionsCheck, HaveToBeTheSame)
{
    const QString own = ", tarnctl " TARN_VERSION;
    EXPECT_EQ(lineOf("version"), "good: program " TARN_VERSION ", running " TARN_VERSION + own);
    computer.version = "0.9";
    EXPECT_EQ(lineOf("version"), "bad: program 0.9, running " TARN_VERSION + own + " -> restart the service");
    log({"debug Tarn Service is running as  \"0.9\" !"});
    EXPECT_EQ(lineOf("version"),
        "bad: program 0.9, running 0.9" + own + " -> use the tarnctl that came with the service");
    computer.version = TARN_VERSION;
    EXPECT_EQ(
        lineOf("version"), "bad: program " TARN_VERSION ", running 0.9" + own + " -> restart the service");
}

TEST_F(VersionsCheck, AreTakenFromWhereTheyAre)
{
    computer.version.clear();
    EXPECT_EQ(lineOf("version"), "good: running " TARN_VERSION ", tarnctl " TARN_VERSION);
    log({"debug something else"});
    EXPECT_EQ(lineOf("version"), "unknown: neither the program nor the log tells -> start the service");
    computer.version = TARN_VERSION;
    EXPECT_EQ(lineOf("version"), "good: program " TARN_VERSION ", tarnctl " TARN_VERSION);
}

TEST_F(VersionsCheck, OfARunThatHasEndedDoesNotCount)
{
    log({"debug Tarn Service is running as  \"0.9\" !"});
    computer.programs.clear();
    computer.entry.processId = 0;
    EXPECT_EQ(lineOf("version"), "good: program " TARN_VERSION ", last run 0.9, tarnctl " TARN_VERSION);
}
