#include "update_fixture.h"

#include "support/pipe_peer.h"
#include "support/resource_limit.h"
#include "update/tool_run.h"

#include <QProcess>

#include <unistd.h>

using tarnFirmwareUpdate::FlashingTool;
using tarnFirmwareUpdate::isToolLeftRunning;
using tarnFirmwareUpdate::isToolRunning;
using tarnFirmwareUpdate::runTool;
using tarnTest::waitUntil;

class ToolRun : public tarnTest::UpdateTest
{
protected:
    tarnFirmwareUpdate::ToolResult run() { return runTool(process, FlashingTool::ofMcu()); }

    QProcess process;
};

TEST_F(ToolRun, CollectsWhatIsPrinted)
{
    installFlasher("echo said; echo complained >&2; exit 7");
    const auto result = run();
    EXPECT_EQ(result.failure, QString());
    EXPECT_EQ(result.output, "said\n");
    EXPECT_EQ(result.errors, "complained\n");
    EXPECT_EQ(process.exitCode(), 7);
    EXPECT_EQ(QDir("function").entryList(QDir::Files), QStringList("inpoutx64.dll")); // nothing stays
}

// A signal to this process's terminal or group must not stop a tool that flashes.
TEST_F(ToolRun, IsInASessionAndAGroupOfItsOwn)
{
    installFlasher("read -r id name state parent group session rest </proc/$$/stat; echo $$ $group $session");
    const QList<QByteArray> ids = run().output.trimmed().split(' ');
    ASSERT_EQ(ids.size(), 3);
    EXPECT_NE(ids.at(0).toInt(), ::getpid());
    EXPECT_EQ(ids.at(1), ids.at(0));
    EXPECT_EQ(ids.at(2), ids.at(0));
}

// A pipe would break when this process ends, and the tool with it.
TEST_F(ToolRun, PrintsIntoFiles)
{
    installFlasher("readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2");
    const QString folder = QDir("function").canonicalPath();
    EXPECT_EQ(QString::fromLocal8Bit(run().output),
        QString("/dev/null\n%1/stm32flash.out\n%1/stm32flash.err\n").arg(folder));
}

TEST_F(ToolRun, IsNotMistakenForAnEarlierOne)
{
    machine.folder.write("function/stm32flash.out", "left by a service that was killed");
    machine.folder.write("function/stm32flash.err", "left by a service that was killed");
    installFlasher("echo said");
    const auto result = run();
    EXPECT_EQ(result.output, "said\n");
    EXPECT_EQ(result.errors, "");
}

TEST_F(ToolRun, OfAMissingToolSaysWhy)
{
    const auto result = run();
    EXPECT_NE(result.failure, QString());
    EXPECT_EQ(process.error(), QProcess::FailedToStart);
}

// An error text that could not be stored must not count as no error text.
TEST_F(ToolRun, OnAFullDiskIsAFailure)
{
    installTool("function/MCU/stm32flash.exe", "echo complained >&2");
    const auto result = [this] {
        const tarnTest::FileSizeLimit limit(0); // also limits the output of the test itself
        return run();
    }();
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.failure, "What it says cannot be kept: File too large");
}

TEST_F(ToolRun, IsKnownWhileItLasts)
{
    installFlasher(untilGo);
    EXPECT_FALSE(isToolRunning());
    std::thread other([this] { static_cast<void>(run()); });
    EXPECT_TRUE(waitUntil([this] { return exists("function/MCU/running"); }));
    EXPECT_TRUE(waitUntil([] { return isToolRunning(); }));
    EXPECT_TRUE(FlashingTool::ofMcu().isRunning());
    EXPECT_FALSE(FlashingTool::ofEc().isRunning());
    EXPECT_FALSE(isToolLeftRunning()); // it is this process's own
    machine.folder.write("function/MCU/go", "");
    other.join();
    EXPECT_FALSE(isToolRunning());
    EXPECT_FALSE(FlashingTool::ofMcu().isRunning());
}

// On the simulated computer the flasher is a script that runs the real one.
TEST_F(ToolRun, OfTheSimulatedComputersFlasherIsKnownByTheScript)
{
    const QString script = machine.folder.path("function/MCU/stm32flash.exe");
    ASSERT_TRUE(QFile::copy(TARN_FLASHER_WRAPPER, script));
    ASSERT_TRUE(QFile(script).setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray pathBefore = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(machine.folder.path(".")) + ':' + pathBefore);
    installTool("stm32flash", QByteArray(untilGo) + "; exit 7");
    std::thread other([this] { static_cast<void>(run()); });
    EXPECT_TRUE(waitUntil([this] { return exists("function/MCU/running"); }));
    EXPECT_TRUE(FlashingTool::ofMcu().isRunning());
    machine.folder.write("function/MCU/go", "");
    other.join();
    EXPECT_FALSE(FlashingTool::ofMcu().isRunning());
    EXPECT_EQ(process.exitCode(), 7);
    qputenv("PATH", pathBefore);
}

class RunningTool : public tarnTest::UpdateTest
{
protected:
    [[nodiscard]] static bool isSeenAt(const QString &path)
    {
        tarnTest::ScriptedProcesses processes;
        processes.paths = {path};
        return FlashingTool::ofEc().isRunning();
    }
};

TEST_F(RunningTool, IsOneOfThisInstallation)
{
    installTool("function/EC/IFU_XE.exe", "exit");
    QDir().mkpath("elsewhere");
    machine.folder.write("elsewhere/IFU_XE.exe", "");
    EXPECT_TRUE(isSeenAt(QFileInfo("function/EC/IFU_XE.exe").absoluteFilePath()));
    EXPECT_TRUE(isSeenAt(QFileInfo("function/EC/IFU_XE.exe").canonicalFilePath()));
    EXPECT_FALSE(isSeenAt(QFileInfo("elsewhere/IFU_XE.exe").absoluteFilePath()));
    EXPECT_FALSE(isSeenAt("/nowhere/IFU_XE.exe"));
    EXPECT_FALSE(isSeenAt("/sbin/init"));
}

// A file may go while its program runs, and an installation may lack its tool. Two files that are not there
// are not the same one.
TEST_F(RunningTool, IsKnownByItsPathWhenItsFileHasGone)
{
    EXPECT_TRUE(isSeenAt(QDir::current().absoluteFilePath("function/EC/IFU_XE.exe")));
    EXPECT_FALSE(isSeenAt("/nowhere/IFU_XE.exe"));
    EXPECT_FALSE(isSeenAt(QDir::current().absoluteFilePath("elsewhere/IFU_XE.exe")));
}

TEST_F(RunningTool, MayBeWhatCannotBeToldApart)
{
    installTool("function/EC/IFU_XE.exe", "exit");
    EXPECT_TRUE(isSeenAt(""));
}

TEST_F(RunningTool, RefusesAnUpdateAndSaysSo)
{
    tarnTest::ScriptedProcesses processes;
    EXPECT_FALSE(isToolLeftRunning());
    EXPECT_TRUE(machine.log.lines().isEmpty());
    for (const char *tool : {"./function/MCU/stm32flash.exe", "./function/EC/IFU_XE.exe"}) {
        machine.log.clear();
        installTool(tool, "exit");
        processes.paths = {QFileInfo(tool).canonicalFilePath()};
        EXPECT_TRUE(isToolLeftRunning());
        EXPECT_EQ(machine.log.lines(),
            QStringList({QString("W: Refused, because this tool is running already: \"%1\"").arg(tool)}));
    }
}
