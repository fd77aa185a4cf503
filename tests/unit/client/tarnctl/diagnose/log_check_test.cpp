#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <QDir>

using namespace tarnctl;

namespace {

const QString runBegins = "debug Tarn Service is running as  \"" TARN_VERSION "\" !";

} // namespace

using LogOfService = tarnClientTest::Diagnosis;

TEST_F(LogOfService, HasToBeThereWhileTheServiceRuns)
{
    remove("log/TarnService.log");
    const QString seen = "none in FOLDER/log -> the service's account has to be allowed to write there";
    EXPECT_EQ(lineOf("log"), "bad: " + seen);
    EXPECT_EQ(lineOf("last warnings"), QString());
    computer.programs.clear();
    EXPECT_EQ(lineOf("log"), "unknown: " + seen);
}

TEST_F(LogOfService, HasToHaveTheRunThatIsOn)
{
    EXPECT_EQ(lineOf("log"), "good: FOLDER/log");
    auto &process = computer.programs["TarnService.exe"][0];
    process.started = started.addSecs(2);
    EXPECT_EQ(lineOf("log"), "good: FOLDER/log");
    process.started = started.addSecs(3); // all lines are of a run before
    const QString missing =
        "FOLDER/log has nothing of the process that runs -> look again in ten seconds; if it stays "
        "so, the service's account has to be allowed to write there";
    EXPECT_EQ(lineOf("log"), "bad: " + missing);
    process.started = now.addSecs(-10);
    EXPECT_EQ(lineOf("log"), "unknown: " + missing);
    process.started = {};
    EXPECT_EQ(lineOf("log"), "good: FOLDER/log");
    process.started = started;
    log({"debug of a run that began in a file that is gone"});
    EXPECT_EQ(lineOf("log"), "good: FOLDER/log");
    log({});
    EXPECT_EQ(lineOf("log"), "bad: " + missing);
}

TEST_F(LogOfService, ShowsItsLastWarnings)
{
    EXPECT_EQ(linesOf("last warnings"), QStringList("good: none"));
    log({runBegins, "warning one", "debug two", "critical three", "warning four", "info five", "warning six",
        "warning seven", "warning eight"});
    const QString time = "unknown: 2026-11-21 11:00:00 ";
    EXPECT_EQ(linesOf("last warnings"),
        QStringList({time + "three", time + "four", time + "six", time + "seven",
            time + "eight -> nothing, if all works: clients cause warnings, too"}));
}

TEST_F(LogOfService, OfARunThatEndedFatallyIsBad)
{
    const QString advice = " -> see \"When something is wrong\" in docs/operations.md";
    log({runBegins, "fatal Cannot load library"});
    EXPECT_EQ(lineOf("last warnings"), "bad: 2026-11-21 11:00:00 Cannot load library" + advice);
    log({"fatal Cannot load library", runBegins, "debug other"}); // it was started again since
    EXPECT_TRUE(lineOf("last warnings").startsWith("unknown: "));
}

TEST_F(LogOfService, IsAFolder)
{
    ASSERT_TRUE(QDir(path("log")).removeRecursively());
    write("log", "in the way");
    EXPECT_EQ(lineOf("log"), "bad: FOLDER/log is no folder -> remove it");
}

TEST_F(LogOfService, ShowsWarningsOfLongAgoButNotAllOfThem)
{
    QStringList lines(5000, "debug something");
    lines[0] = runBegins;
    lines[1] = "warning " + QString(300, 'x');
    log(lines);
    EXPECT_EQ(lineOf("last warnings").section(" -> ", 0, 0),
        "unknown: 2026-11-21 11:00:00 " + QString(180, 'x') + "...");
}

TEST_F(LogOfService, TellsHowTheRunBeforeEnded)
{
    EXPECT_EQ(linesOf("last end"), QStringList()); // there is none
    log({runBegins, "debug service is Finish!", "debug EcDirverReader object is kill!", runBegins,
        "debug goes on"});
    EXPECT_EQ(lineOf("last end"), "good: in order");
    log({runBegins, "debug cut off", runBegins, "debug goes on"});
    const QString crash =
        " -> a crash, a power cut, or somebody ended the process; the lines before tell more";
    EXPECT_EQ(lineOf("last end"),
        "unknown: not in order; its last line: 2026-11-21 11:00:00.000 debug 0x7f2a cut off" + crash);
    computer.programs.clear();
    EXPECT_EQ(lineOf("last end"),
        "unknown: not in order; its last line: 2026-11-21 11:00:00.000 debug 0x7f2a goes on" + crash);
}
