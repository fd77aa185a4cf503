#include "graphics/gui_launcher.h"

#include "support/process_ending.h"

#include "graphics/process_check.h"
#include "graphics_fixture.h"
#include "pipe/tarn_pipe_server.h"

#include <QCoreApplication>

using tarnAccessoryManager::isProcessRunning;
using tarnAccessoryManager::launchGuiProgram;
using tarnPlatform::LaunchStage;

namespace {

constexpr char launcherPrefix[] = "GraphicsActive_log & GraphicsDisengaged_log: ";

QString launcherLine(const QString &text)
{
    return launcherPrefix + text;
}

} // namespace

class GuiLauncher : public tarnTest::GraphicsTest
{
protected:
    GuiLauncher()
    {
        tarnPipeServer::SendQueueThread::instance();
        tarnPipeServer::TarnPipeServer::instance();
        machine.log.clear();
    }
};

struct Answer
{
    quint32 exitCode;
    int result;
    const char *line;
};

class GuiAnswer : public GuiLauncher, public ::testing::WithParamInterface<Answer>
{
protected:
    [[nodiscard]] static QStringList answerLines()
    {
        return {launcherLine(QString("exitCode for Gui program is  %1").arg(GetParam().exitCode)),
            launcherLine(GetParam().line)};
    }
};

TEST_P(GuiAnswer, IsTheExitCodeInTheServiceSession)
{
    session.serviceSession = true;
    session.exitCode = GetParam().exitCode;
    EXPECT_EQ(launchGuiProgram("--graphics-driver-error"), GetParam().result);
    EXPECT_EQ(session.shown, QStringList({"console --graphics-driver-error"}));
    EXPECT_EQ(machine.log.lines(), answerLines());
}

TEST_P(GuiAnswer, IsTheExitCodeInAUsersSession)
{
    session.exitCode = GetParam().exitCode;
    EXPECT_EQ(launchGuiProgram("--disengaged-graphics"), GetParam().result);
    EXPECT_EQ(session.shown, QStringList({"wait 30000 --disengaged-graphics"}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({launcherLine("Starting TarnServiceGui in Debug or Release mode."),
            launcherLine("cmd： \"--disengaged-graphics\"")})
            + answerLines());
}

INSTANTIATE_TEST_SUITE_P(Codes, GuiAnswer,
    ::testing::Values(
        Answer {0, 0, "click no!!!"}, Answer {1, 1, "click yes!!!"}, Answer {2, 0, "exit code: 2"}));

TEST_F(GuiLauncher, KeepsTheExactPath)
{
    launchGuiProgram("--disengaged-graphics");
    EXPECT_EQ(
        session.lastProgram, QCoreApplication::applicationDirPath() + "./TarnServiceGui/TarnServiceGui.exe");
}

struct LaunchFailure
{
    LaunchStage stage;
    const char *line;
};

class GuiLaunchFailure : public GuiLauncher, public ::testing::WithParamInterface<LaunchFailure>
{ };

TEST_P(GuiLaunchFailure, CountsAsNo)
{
    session.serviceSession = true;
    session.stage = GetParam().stage;
    EXPECT_EQ(launchGuiProgram("--disengaged-graphics"), 0);
    EXPECT_EQ(machine.log.lines(), QStringList({launcherLine(GetParam().line)}));
}

INSTANTIATE_TEST_SUITE_P(Stages, GuiLaunchFailure,
    ::testing::Values(LaunchFailure {LaunchStage::NoActiveSession, "No active session found"},
        LaunchFailure {LaunchStage::NoUserToken, "Failed to query user token"},
        LaunchFailure {LaunchStage::NoTokenCopy, "Failed to duplicate token"},
        LaunchFailure {LaunchStage::NoProcess, "Failed to create process"},
        LaunchFailure {LaunchStage::NoExitCode, "Failed to get exit code"}));

TEST_F(GuiLauncher, DoesNotWaitForANoticeInAUsersSession)
{
    EXPECT_EQ(launchGuiProgram("--graphics-patch-error"), 0); // although the program would exit with 1
    EXPECT_EQ(session.shown, QStringList({"detached --graphics-patch-error"}));
    EXPECT_EQ(machine.log.lines().size(), 2);
}

TEST_F(GuiLauncher, ReportsANoticeThatCannotBeStarted)
{
    session.starts = false;
    EXPECT_EQ(launchGuiProgram("--graphics-patch-error"), 0);
    EXPECT_TRUE(machine.log.lines().last().startsWith("W: " + launcherLine("Failed to create process")));
}

TEST_F(GuiLauncher, OpensNoWindowOnceTheProcessEnds)
{
    tarnTest::letProcessEnd();
    for (const bool inServiceSession : {false, true}) {
        session.serviceSession = inServiceSession;
        EXPECT_EQ(launchGuiProgram("--disengaged-graphics"), 0);
        EXPECT_EQ(launchGuiProgram("--graphics-patch-error"), 0);
    }
    EXPECT_TRUE(session.shown.isEmpty());
    EXPECT_EQ(machine.log.lines().last(),
        "W: " + launcherLine("The service ends, so nobody is shown \"--graphics-patch-error\""));
}

TEST_F(GuiLauncher, FindsAProcessInAnySpelling)
{
    processes.programs = QStringList {"a", "TARN.exe"};
    EXPECT_TRUE(isProcessRunning("Tarn.exe"));
    EXPECT_FALSE(isProcessRunning("Tarn"));
    EXPECT_EQ(machine.log.lines(), QStringList({"\"Tarn.exe\"  is running.", "\"Tarn\"  is not running."}));
}
