#include "platform/processes.h"
#include "platform/user_session.h"
#include "support/pipe_peer.h"
#include "support/simulated_machine.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

using namespace std::chrono_literals;
using tarnPlatform::LaunchStage;
using tarnPlatform::ProcessList;
using tarnPlatform::UserSession;
using tarnSimulator::Fault;

// The session of the simulated computer, with a shell script in the place of the GUI program.
class SimulatedDesktop : public tarnTest::MachineTest
{
protected:
    SimulatedDesktop()
    {
        QDir(machine.folder.path(".")).mkpath("TarnServiceGui");
        script("exit 1");
    }

    void script(const QByteArray &commands)
    {
        machine.folder.write(
            "TarnServiceGui/TarnServiceGui.exe", "#!/bin/sh\necho $1 >asked\n" + commands + '\n');
        QFile(machine.folder.path("TarnServiceGui/TarnServiceGui.exe"))
            .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    // As the service writes it; the dot has a meaning on Windows only.
    [[nodiscard]] QString program() const
    {
        return QDir::currentPath() + "./TarnServiceGui/TarnServiceGui.exe";
    }

    UserSession &session = UserSession::system();
};

TEST_F(SimulatedDesktop, IsAUsersUntilTheMachineSaysOtherwise)
{
    EXPECT_FALSE(session.isServiceSession());
    machine.computer.desktop().setServiceSession(true);
    EXPECT_TRUE(session.isServiceSession());
}

TEST_F(SimulatedDesktop, RunsTheProgramForTheConsoleUser)
{
    const auto launch = session.runForConsoleUser(program(), "--switch");
    EXPECT_EQ(launch.stage, LaunchStage::Ended);
    EXPECT_EQ(launch.exitCode, 1U);
    EXPECT_EQ(machine.folder.read("asked"), "--switch\n");
}

TEST_F(SimulatedDesktop, EachStepOfALaunchCanFail)
{
    const std::pair<Fault, LaunchStage> steps[] = {{Fault::NoConsoleSession, LaunchStage::NoActiveSession},
        {Fault::NoUserToken, LaunchStage::NoUserToken}, {Fault::NoTokenCopy, LaunchStage::NoTokenCopy},
        {Fault::NoGuiProcess, LaunchStage::NoProcess}, {Fault::NoGuiExitCode, LaunchStage::NoExitCode}};
    for (const auto &[fault, stage] : steps) {
        machine.faults().switchOn(fault);
        EXPECT_EQ(session.runForConsoleUser(program(), "x").stage, stage);
        machine.faults().clear();
    }
    EXPECT_EQ(session.runForConsoleUser("/nowhere/program", "x").stage, LaunchStage::NoProcess);
}

TEST_F(SimulatedDesktop, WaitsForAnAnswerInAUsersSession)
{
    script("exit 7");
    EXPECT_EQ(session.run(program(), "--question", 20s), 7);
    EXPECT_EQ(machine.folder.read("asked"), "--question\n");
}

TEST_F(SimulatedDesktop, DoesNotWaitLongerThanItsTimeLimit)
{
    script("exec sleep 30");
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(session.run(program(), "--question", 300ms), 0);
    EXPECT_LT(time.elapsed(), 15000);
}

TEST_F(SimulatedDesktop, AProgramThatIsKilledSaysNothing)
{
    script("kill -HUP $$"); // signal 1
    EXPECT_NE(session.run(program(), "--question", 20s), 1);
    const auto launch = session.runForConsoleUser(program(), "--question");
    EXPECT_EQ(launch.stage, LaunchStage::Ended);
    EXPECT_NE(launch.exitCode, 1U);
}

TEST_F(SimulatedDesktop, AMissingProgramAnswersNothingAndIsReported)
{
    EXPECT_NE(session.run("/nowhere/program", "--question", 5s), 1);
    EXPECT_TRUE(machine.log.lines().last().startsWith(
        "W: GraphicsActive_log & GraphicsDisengaged_log: Failed to create process \"/nowhere/program\""));
    EXPECT_FALSE(session.startDetached("/nowhere/program", "--notice"));
}

TEST_F(SimulatedDesktop, LeavesADetachedProgramAlone)
{
    EXPECT_TRUE(session.startDetached(program(), "--notice"));
    EXPECT_TRUE(tarnTest::waitUntil([this] { return machine.folder.read("asked") == "--notice\n"; }));
}

TEST_F(SimulatedDesktop, ListsTheProcessesOfTheComputer)
{
    const QString name = "tarn-listed-process-with-a-long-name";
    QFile::copy(QFileInfo("/bin/sleep").canonicalFilePath(), machine.folder.path(name));
    QProcess process;
    process.start(machine.folder.path(name), {"30"});
    ASSERT_TRUE(process.waitForStarted());
    const auto isListed = [&name] {
        return ProcessList::system().anyOf([&name](const QString &program) { return program == name; });
    };
    EXPECT_TRUE(tarnTest::waitUntil(isListed));
    process.kill();
    process.waitForFinished();
    EXPECT_FALSE(isListed());
}

// A process may go by another name than its program has, as scripts do, and as Windows programs do under
// Wine.
TEST_F(SimulatedDesktop, KnowsProcessesByTheirOwnNameButNotThoseUnderWine)
{
    const QString ownName = "tarn-own-name"; // at most 15 characters
    for (const bool underWine : {false, true}) {
        const QString shell = machine.folder.path(underWine ? "wine64-shell" : "shell");
        QFile::copy(QFileInfo("/bin/sh").canonicalFilePath(), shell);
        QProcess process;
        process.start(shell, {"-c", QString("printf %1 >/proc/$$/comm; echo named; read end").arg(ownName)});
        ASSERT_TRUE(process.waitForReadyRead());
        EXPECT_EQ(
            ProcessList::system().anyOf([&ownName](const QString &program) { return program == ownName; }),
            !underWine);
        process.kill();
        process.waitForFinished();
    }
}

TEST_F(SimulatedDesktop, ActsForTheConsoleUserWhileThereIsOne)
{
    EXPECT_EQ(
        session.consoleUserDownloadFolder(), QDir::current().absoluteFilePath("console_user/Downloads"));
    int acted = 0;
    EXPECT_TRUE(session.asConsoleUser([&acted] { ++acted; }));
    machine.faults().switchOn(Fault::NoConsoleSession);
    EXPECT_TRUE(session.consoleUserDownloadFolder().isEmpty());
    EXPECT_FALSE(session.asConsoleUser([&acted] { ++acted; }));
    EXPECT_EQ(acted, 1);
}
