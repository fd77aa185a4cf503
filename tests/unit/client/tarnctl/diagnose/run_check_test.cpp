#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

using namespace tarnctl;

using RunCheck = tarnClientTest::Diagnosis;

TEST_F(RunCheck, TellsSinceWhenAndInWhichProcess)
{
    EXPECT_EQ(lineOf("running"), "good: since 2026-11-21 11:00:00, process 1234");
    computer.programs["TarnService.exe"][0].started = {};
    EXPECT_EQ(lineOf("running"), "good: since 2026-11-21 11:00:00, as the log says, process 1234");
    remove("log/TarnService.log");
    EXPECT_EQ(lineOf("running"), "good: since a time that the system does not tell, process 1234");
}

TEST_F(RunCheck, TellsThatItStopped)
{
    computer.entry.state = ServiceEntry::State::Stopped;
    computer.entry.processId = 0;
    computer.programs.clear();
    const QString advice = " -> start it: sc.exe start \"Tarn Service\"; if it ends again, the log tells why";
    EXPECT_EQ(lineOf("running"), "bad: no, the service is stopped" + advice);
    computer.entry.lastExitCode = 1067;
    EXPECT_EQ(lineOf("running"), "bad: no, it ended with error 1067" + advice);
    computer.programs["TarnService.exe"] = {{path("TarnService.exe"), 7, started}};
    EXPECT_EQ(lineOf("running"),
        "unknown: the service is stopped, but its program runs in a console, since 2026-11-21 11:00:00, "
        "process 7 -> "
        "end it there with Ctrl+C, then sc.exe start \"Tarn Service\"");
}

TEST_F(RunCheck, GivesAStartHalfAMinute)
{
    const QString later = " -> look again in half a minute";
    const QString advice =
        " -> look at the last lines of the log; if they do not go on, restart the computer";
    auto &process = computer.programs["TarnService.exe"][0];
    computer.entry.state = ServiceEntry::State::Starting;
    process.started = now.addSecs(-30);
    EXPECT_EQ(lineOf("running"), "unknown: the service is starting" + later);
    process.started = now.addSecs(-31);
    EXPECT_EQ(lineOf("running"), "bad: the service is starting; its process is 31 s old" + advice);
    process.started = {};
    EXPECT_EQ(lineOf("running"), "unknown: the service is starting" + later);
    computer.entry.state = ServiceEntry::State::Stopping;
    EXPECT_EQ(lineOf("running"),
        "unknown: the service is stopping" + later + "; if it still is, restart the computer");
}

TEST_F(RunCheck, KnowsTheOtherStates)
{
    computer.entry.state = ServiceEntry::State::Paused;
    EXPECT_EQ(lineOf("running"), "good: paused, which changes nothing for its clients");
    computer.entry.state = ServiceEntry::State::Other;
    EXPECT_EQ(
        lineOf("running"), "unknown: in a state that tarnctl does not know -> look again in half a minute");
}

TEST_F(RunCheck, LooksForTheProgramWhereThereIsNoManager)
{
    computer.installed = folder.path();
    computer.entry = {};
    EXPECT_EQ(lineOf("running"), "good: since 2026-11-21 11:00:00, process 1234");
    computer.programs["TarnService.exe"][0].path = "/elsewhere/TarnService.exe";
    EXPECT_EQ(lineOf("running"), "bad: no -> start it; if it ends again, the log tells why");
    computer.programs["TarnService.exe"][0].path.clear();
    EXPECT_EQ(
        lineOf("running"), "unknown: the processes cannot be looked at -> run tarnctl as administrator");
    computer.areProcessesListed = false;
    EXPECT_EQ(
        lineOf("running"), "unknown: the processes cannot be looked at -> run tarnctl as administrator");
}

TEST_F(RunCheck, WantsOneServiceOnly)
{
    EXPECT_EQ(linesOf("one service only"), QStringList());
    computer.programs["TarnService.exe"] << TimedProgram {"/elsewhere/TarnService.exe", 99, now.addSecs(-6)};
    EXPECT_EQ(lineOf("one service only"),
        "bad: 2 processes run: 1234 (FOLDER/TarnService.exe), 99 (/elsewhere/TarnService.exe) -> end the one "
        "that was started by hand (-exec): both disturb "
        "each "
        "other at the EC");
    computer.programs["TarnService.exe"][1].started = now.addSecs(-5); // such as -version, which waits 4 s
    EXPECT_EQ(lineOf("one service only"),
        "unknown: 2 processes run: 1234 (FOLDER/TarnService.exe), 99 (/elsewhere/TarnService.exe) -> look "
        "again in ten seconds");
    // Without a service manager each installation has a simulated EC of its own.
    computer.installed = folder.path();
    computer.entry = {};
    computer.programs["TarnService.exe"][1].started = now.addSecs(-6);
    EXPECT_EQ(linesOf("one service only"), QStringList());
    computer.programs["TarnService.exe"][1].path = path("TarnService.exe");
    EXPECT_TRUE(lineOf("one service only").startsWith("bad: 2 processes"));
}
