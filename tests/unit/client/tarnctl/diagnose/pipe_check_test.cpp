#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

using namespace tarnctl;

using PipeCheck = tarnClientTest::Diagnosis;

TEST_F(PipeCheck, HasToBeThereWhileTheServiceRuns)
{
    computer.pipeState = {};
    EXPECT_EQ(lineOf("pipe tarnPipe"),
        "bad: not there, although the service runs -> restart the service; another program may have owned "
        "the name "
        "when it started");
    computer.programs["TarnService.exe"][0].started = now.addSecs(-10);
    EXPECT_EQ(lineOf("pipe tarnPipe"),
        "unknown: not there yet, the service has just been started -> look again in ten seconds");
    computer.areProcessesListed = false;
    EXPECT_EQ(lineOf("pipe tarnPipe"),
        "unknown: not there; whether the service runs is not known -> run tarnctl as administrator");
}

TEST_F(PipeCheck, HasToBeTheServices)
{
    computer.programs.clear();
    EXPECT_EQ(lineOf("pipe tarnPipe"),
        "bad: there, although the service does not run -> another program owns the name, or a service was "
        "killed: "
        "start the service");
    computer.pipeState = {};
    EXPECT_EQ(
        lineOf("pipe tarnPipe"), "bad: not there, because the service does not run -> start it, see above");
}

TEST_F(PipeCheck, HasToTakeThisUser)
{
    computer.pipeState.mayConnect = false;
    EXPECT_EQ(lineOf("may connect"),
        "bad: not this user: only administrators may -> start the client, and this tool, as administrator");
    computer.pipeState.mayConnect = {};
    EXPECT_EQ(
        lineOf("may connect"), "unknown: the system does not tell -> look again when the pipe is there");
}

TEST_F(PipeCheck, HasToHaveAPossibleName)
{
    computer.pipeState = {false, {}, "The name is invalid."};
    EXPECT_EQ(lineOf("pipe tarnPipe"), "unknown: The name is invalid. -> look at the name of the pipe");
}
