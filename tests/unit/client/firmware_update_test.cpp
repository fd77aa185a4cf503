#include "firmware_update_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

using namespace tarnClientTest;
using tarnClient::ecUpdatePlan;
using tarnClient::mcuUpdatePlan;

TEST_F(TarnctlUpdateTest, McuIsAskedForThenUpdated)
{
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "The KVane's MCU now runs version 3.14.\n");
    EXPECT_EQ(service.commands(), mcuCommands);
    EXPECT_EQ(
        QJsonDocument::fromJson(service.requests().value(1)).object().value("data").toString(), "fw.bin");
    EXPECT_EQ(present.value(1), placed);
    EXPECT_EQ(taken, "new firmware");
    EXPECT_EQ(readFile(folders.firmware()), "new firmware");
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, EcIsReservedThenUpdated)
{
    const ToolRun run = update(ecUpdatePlan());
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.output.startsWith("The EC tool has been run. Whether it succeeded only the tool knows."));
    EXPECT_TRUE(run.errors.contains("Restart the computer now")) << run.errors.toStdString();
    EXPECT_EQ(service.commands(), ecCommands);
    EXPECT_EQ(
        QJsonDocument::fromJson(service.requests().value(1)).object().value("data").toString(), "fw.bin");
    // What can go wrong with the file has to go wrong before the EC is reserved for good.
    EXPECT_EQ(present.value(0), placed);
    EXPECT_EQ(taken, "new firmware");
}

TEST_F(TarnctlUpdateTest, ShowsThePhasesOnTheErrorOutput)
{
    const QByteArray mcu = update(mcuUpdatePlan()).errors;
    EXPECT_TRUE(mcu.startsWith("Keep the computer on and the KVane attached.")) << mcu.toStdString();
    EXPECT_TRUE(mcu.contains("\n0:00  asking for the accessory\n0:00  starting the boot loader\n"))
        << mcu.toStdString();
    const QByteArray ec = update(ecUpdatePlan()).errors;
    EXPECT_TRUE(ec.startsWith("Save your work")) << ec.toStdString();
    EXPECT_TRUE(ec.contains("\n0:00  reserving the EC\n0:00  running the EC tool\n")) << ec.toStdString();
}

TEST_F(TarnctlUpdateTest, CountsTheSecondsOnATerminal)
{
    silentAt = "requestMcuUpdate";
    const ToolRun run = update(mcuUpdatePlan(), {"--timeout", "1.4"}, true);
    EXPECT_TRUE(run.errors.contains("\r0:01  starting the boot loader")) << run.errors.toStdString();
    // The line is gone before the message.
    EXPECT_TRUE(run.errors.contains(" \rtarnctl: No answer to requestMcuUpdate")) << run.errors.toStdString();
}

TEST_F(TarnctlUpdateTest, McuWithoutAVersionIsSaidSo)
{
    version.clear();
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "The service calls the update done, but the MCU's version cannot be read.\n");
}

TEST_F(TarnctlUpdateTest, McuNeedsAKVane)
{
    for (const char *accessory : {"dock", "graphics", "disconnected", ""}) {
        answers["getAccessoryType"] = accessory;
        const ToolRun run = update(mcuUpdatePlan());
        EXPECT_EQ(run.code, 1) << accessory;
        EXPECT_TRUE(run.output.isEmpty());
        EXPECT_TRUE(
            run.errors.contains(QByteArray("needs a KVane, and the service sees \"") + accessory + '"'))
            << run.errors.toStdString();
        EXPECT_TRUE(run.errors.contains("Attach a KVane"));
    }
    EXPECT_FALSE(service.commands().contains("requestMcuUpdate"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, ForceLeavesOutTheQuestionForTheAccessoryOnly)
{
    EXPECT_EQ(update(mcuUpdatePlan(), {"--force"}).code, 0);
    EXPECT_EQ(service.commands(), QStringList {"requestMcuUpdate"});
    EXPECT_EQ(update(ecUpdatePlan(), {"--force"}).code, 0);
    EXPECT_EQ(service.commands().mid(1), ecCommands);
}

TEST_F(TarnctlUpdateTest, McuThatFailedCanBeRepeated)
{
    answers["requestMcuUpdate"] = "failed";
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.errors.contains("tarnctl: The update failed: the flasher complained three times"));
    EXPECT_TRUE(run.errors.contains("Its boot loader cannot be damaged"));
    EXPECT_FALSE(run.errors.contains("has left the download folder"));
}

TEST_F(TarnctlUpdateTest, ARefusedFileIsTakenBack)
{
    take = Take::No;
    answers["requestMcuUpdate"] = "failed";
    const ToolRun mcu = update(mcuUpdatePlan());
    EXPECT_EQ(mcu.code, 1);
    EXPECT_TRUE(mcu.errors.contains("did not take the file: the MCU has not been touched"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());

    answers["requestEcUpdate"] = "failed";
    const ToolRun ec = update(ecUpdatePlan());
    EXPECT_EQ(ec.code, 1);
    EXPECT_TRUE(ec.errors.contains("did not take the file. Nothing has been flashed."));
    EXPECT_TRUE(ec.errors.contains("The EC stays reserved: restart the service"));
    EXPECT_EQ(present.value(3), placed);
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, EcThatCannotBeReservedIsNotUpdated)
{
    answers["requestStartEcUpdate"] = "failed";
    const ToolRun run = update(ecUpdatePlan());
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(service.commands(), QStringList {"requestStartEcUpdate"});
    EXPECT_TRUE(run.errors.contains("could not reserve the EC. Nothing has been flashed."));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(TarnctlUpdateTest, EcThatFailedAfterTheFileWasTaken)
{
    answers["requestEcUpdate"] = "failed";
    const ToolRun run = update(ecUpdatePlan());
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.errors.contains("before it ran the EC tool. Nothing has been flashed."));
}

TEST_F(TarnctlUpdateTest, SaysThatAFileOfTheDownloadFolderIsTakenAway)
{
    file = folders.downloaded();
    writeFile(file, "own");
    const ToolRun run = update(mcuUpdatePlan());
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(taken, "own");
    EXPECT_TRUE(run.errors.startsWith("The service takes this file out of the download folder"));
    EXPECT_TRUE(run.errors.contains(QDir::toNativeSeparators(file).toUtf8()));

    writeFile(file, "own");
    answers["requestMcuUpdate"] = "failed";
    EXPECT_TRUE(update(mcuUpdatePlan()).errors.contains("The file has left the download folder"));

    writeFile(file, "own");
    take = Take::No;
    EXPECT_FALSE(update(mcuUpdatePlan()).errors.contains("The file has left the download folder"));
    EXPECT_EQ(readFile(file), "own");
}

TEST_F(TarnctlUpdateTest, AnotherFileOfTheNameKeepsItFromStarting)
{
    writeFile(folders.downloaded(), "own");
    const ToolRun run = update(ecUpdatePlan());
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: There is another file of that name"));
    EXPECT_TRUE(service.commands().isEmpty());
    EXPECT_EQ(readFile(folders.downloaded()), "own");
}

TEST_F(TarnctlUpdateTest, AFileThatCannotBeUsedIsNotEvenSpokenAbout)
{
    file = folders.downloaded("none.bin");
    const ToolRun run = update(ecUpdatePlan());
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: There is no file"));
    EXPECT_EQ(service.connections(), 0);
}

TEST_F(TarnctlUpdateTest, JsonIsTheLastAnswerAndNothingElse)
{
    const ToolRun mcu = update(mcuUpdatePlan(), {"--json"}, true);
    EXPECT_EQ(mcu.code, 0);
    EXPECT_EQ(mcu.output, "{\"cmd\":\"requestMcuUpdate\",\"data\":\"successed\",\"mcuVer\":\"3.14\"}\n");
    EXPECT_EQ(mcu.errors, "");
    const ToolRun ec = update(ecUpdatePlan(), {"--json"});
    EXPECT_EQ(ec.output, "{\"cmd\":\"requestEcUpdate\",\"data\":\"successed\"}\n");
    EXPECT_EQ(ec.errors, "");
}

TEST_F(TarnctlUpdateTest, JsonOfAFailureIsTheAnswerThatEndedIt)
{
    answers["requestMcuUpdate"] = "failed";
    const ToolRun flashed = update(mcuUpdatePlan(), {"--json"});
    EXPECT_EQ(flashed.code, 1);
    EXPECT_TRUE(flashed.output.contains("\"data\":\"failed\""));
    EXPECT_TRUE(flashed.errors.startsWith("tarnctl: The update failed"));
    answers["getAccessoryType"] = "dock";
    EXPECT_EQ(
        update(mcuUpdatePlan(), {"--json"}).output, "{\"cmd\":\"getAccessoryType\",\"data\":\"dock\"}\n");
}

TEST_F(TarnctlUpdateTest, OtherMessagesAreNotTheAnswer)
{
    service.onConnection([this] {
        service.notify("getAccessoryType", "dock");
        service.notify("changeAccessoryType", "dock");
    });
    const ToolRun quiet = update(mcuUpdatePlan());
    EXPECT_EQ(quiet.code, 0);
    EXPECT_FALSE(quiet.errors.contains("meanwhile"));
    const ToolRun verbose = update(mcuUpdatePlan(), {"--verbose"});
    EXPECT_EQ(verbose.code, 0);
    EXPECT_TRUE(verbose.errors.contains("meanwhile: changeAccessoryType dock\n"));
}

TEST_F(TarnctlUpdateTest, TheVerbsUseTheUsersDownloadFolder)
{
    // The folder of FirmwareFolders is that of this home.
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(QFileInfo(folders.firmware()).path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(QFileInfo(folders.firmware()).path()));
    const ToolRun mcu = runTool(service, {"update-mcu", folders.firmware()});
    const ToolRun ec = runTool(service, {"update-ec", folders.firmware()});
    qputenv("HOME", home);
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(mcu.code, 0);
    EXPECT_EQ(ec.code, 0);
    EXPECT_EQ(service.commands(), mcuCommands + ecCommands);
    EXPECT_EQ(present.value(1), placed);
    EXPECT_EQ(present.value(3), placed);
}

TEST(TarnctlUpdateUsageTest, TakesOneFileAndNoLimits)
{
    for (const char *verb : {"update-mcu", "update-ec"}) {
        EXPECT_EQ(runTool({verb}).code, 2);
        EXPECT_EQ(runTool({verb, "a.bin", "b.bin"}).code, 2);
        const ToolRun limited = runTool({verb, "a.bin", "--for", "5"});
        EXPECT_EQ(limited.code, 2);
        EXPECT_TRUE(limited.errors.contains("--count and --for belong to watch and raw."));
        EXPECT_EQ(runTool({verb, "--help"}).output, runTool({"help", verb}).output);
    }
}
