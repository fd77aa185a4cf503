#include "unit/client/tarnctl/update_command_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

using namespace tarnClientTest;
using tarn::FirmwareKind;

TEST_F(TarnctlUpdateTest, McuIsAskedForThenUpdated)
{
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "The KVane's MCU now runs version 3.14.\n");
    EXPECT_EQ(service.pipe.commands(), mcuCommands);
    EXPECT_EQ(QJsonDocument::fromJson(service.pipe.requests().value(2)).object().value("data").toString(),
        "fw.bin");
    EXPECT_EQ(service.present.value(2), placed);
    EXPECT_EQ(service.taken, "new firmware");
    EXPECT_EQ(readFile(folders.firmware()), "new firmware");
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// requestStartEcUpdate would leave the EC reserved when the service then refuses the file.
TEST_F(TarnctlUpdateTest, EcIsUpdatedWithOneRequest)
{
    const ToolRun run = update(FirmwareKind::Ec);
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.output.startsWith("The service is done with the EC tool. Whether it ran and succeeded "
                                      "only the service's log and the tool know."));
    EXPECT_TRUE(run.errors.contains("Restart the computer now")) << run.errors.toStdString();
    EXPECT_EQ(service.pipe.commands(), ecCommands);
    EXPECT_EQ(QJsonDocument::fromJson(service.pipe.requests().value(0)).object().value("data").toString(),
        "fw.bin");
    EXPECT_EQ(service.present.value(0), placed);
    EXPECT_EQ(service.taken, "new firmware");
}

TEST_F(TarnctlUpdateTest, ShowsThePhasesOnTheErrorOutput)
{
    const QByteArray mcu = update(FirmwareKind::Mcu).errors;
    EXPECT_TRUE(mcu.startsWith("Keep the computer on and the KVane attached.")) << mcu.toStdString();
    EXPECT_TRUE(mcu.contains("\n0:00  asking for the version\n0:00  asking for the accessory\n"
                             "0:00  starting the boot loader\n"))
        << mcu.toStdString();
    const QByteArray ec = update(FirmwareKind::Ec).errors;
    EXPECT_TRUE(ec.startsWith("Save your work")) << ec.toStdString();
    EXPECT_TRUE(ec.contains("\n0:00  running the EC tool\n")) << ec.toStdString();
}

TEST_F(TarnctlUpdateTest, CountsTheSecondsOnATerminal)
{
    service.silentAt = "requestMcuUpdate";
    const ToolRun run = update(FirmwareKind::Mcu, {"--timeout", "1.4"}, true);
    EXPECT_TRUE(run.errors.contains("\r0:01  starting the boot loader")) << run.errors.toStdString();
    // The line is gone before the message.
    EXPECT_TRUE(run.errors.contains(" \rtarnctl: No answer to requestMcuUpdate")) << run.errors.toStdString();
}

TEST_F(TarnctlUpdateTest, McuWithoutAVersionIsSaidSo)
{
    service.version.clear();
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output,
        "The service calls the update done, but the MCU's version cannot be read.\n"
        "Ask for it with getMcuVersion.\n");
    EXPECT_FALSE(run.errors.contains("version of the file"));

    const ToolRun checked = update(FirmwareKind::Mcu, {"--expect", "3.14"});
    EXPECT_EQ(checked.code, 1);
    EXPECT_TRUE(checked.errors.contains("the MCU's version cannot be read."));
}

TEST_F(TarnctlUpdateTest, McuWithoutAFirmwareIsAFailure)
{
    service.version = "0.00";
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.errors.contains("no firmware runs on the MCU (version 0.00)"))
        << run.errors.toStdString();
    EXPECT_TRUE(run.errors.contains("leave the KVane attached and update again."));

    const ToolRun json = update(FirmwareKind::Mcu, {"--json"});
    EXPECT_EQ(json.code, 1);
    EXPECT_EQ(json.output, "{\"cmd\":\"requestMcuUpdate\",\"data\":\"successed\",\"mcuVer\":\"0.00\"}\n");
}

TEST_F(TarnctlUpdateTest, TheExpectedVersionDecides)
{
    const ToolRun right = update(FirmwareKind::Mcu, {"--expect", "3.14"});
    EXPECT_EQ(right.code, 0);
    EXPECT_EQ(right.output, "The KVane's MCU now runs version 3.14.\n");
    EXPECT_FALSE(right.errors.contains("version of the file"));

    const ToolRun wrong = update(FirmwareKind::Mcu, {"--expect", "3.15"});
    EXPECT_EQ(wrong.code, 1);
    EXPECT_TRUE(wrong.output.isEmpty());
    EXPECT_TRUE(wrong.errors.contains("the MCU's version is \"3.14\", not \"3.15\""))
        << wrong.errors.toStdString();
}

TEST_F(TarnctlUpdateTest, TheVersionOfBeforeIsPointedOut)
{
    EXPECT_TRUE(
        update(FirmwareKind::Mcu).errors.contains("If that is not the version of the file, the flasher"));
    service.answers["getMcuVersion"] = "3.14";
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.errors.contains("It ran that version before, too.")) << run.errors.toStdString();
    EXPECT_FALSE(run.errors.contains("If that is not the version of the file"));

    // The first question was not answered by this KVane.
    service.firstAccessory = "dock";
    EXPECT_FALSE(update(FirmwareKind::Mcu).errors.contains("It ran that version before, too."));
}

TEST_F(TarnctlUpdateTest, McuNeedsAKVane)
{
    for (const char *accessory : {"dock", "graphics", "disconnected", ""}) {
        service.answers["getAccessoryType"] = accessory;
        const ToolRun run = update(FirmwareKind::Mcu, {"--timeout", "1.5"});
        EXPECT_EQ(run.code, 1) << accessory;
        EXPECT_TRUE(run.output.isEmpty());
        EXPECT_TRUE(
            run.errors.contains(QByteArray("needs a KVane, and the service sees \"") + accessory + '"'))
            << run.errors.toStdString();
        EXPECT_TRUE(run.errors.endsWith(
            "\nAttach a KVane and try again.\n--force sends the request all the same.\n"));
    }
    EXPECT_FALSE(service.pipe.commands().contains("requestMcuUpdate"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// The service sees an accessory some time after it has been attached.
TEST_F(TarnctlUpdateTest, WaitsSomeSecondsForTheKVane)
{
    service.answers["getAccessoryType"] = "disconnected";
    service.pipe.later(
        std::chrono::milliseconds(700), [this] { service.answers["getAccessoryType"] = "k_vane"; });
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 0);
    EXPECT_GE(service.pipe.commands().count("getAccessoryType"), 2);
    EXPECT_EQ(service.pipe.commands().count("getMcuVersion"), 1);
    EXPECT_EQ(service.pipe.commands().count("requestMcuUpdate"), 1);
    const std::chrono::milliseconds repeatedFor = tarn::updatePlan(FirmwareKind::Mcu).steps[1].repeatedFor;
    EXPECT_GE(repeatedFor, std::chrono::seconds(5)); // a service that has just been started needs 4 s
    EXPECT_LE(repeatedFor, std::chrono::seconds(10));
}

TEST_F(TarnctlUpdateTest, ForceLeavesOutTheQuestionsOnly)
{
    EXPECT_EQ(update(FirmwareKind::Mcu, {"--force"}).code, 0);
    EXPECT_EQ(service.pipe.commands(), QStringList {"requestMcuUpdate"});
    EXPECT_EQ(update(FirmwareKind::Ec, {"--force"}).code, 0);
    EXPECT_EQ(service.pipe.commands().mid(1), ecCommands);
}

TEST_F(TarnctlUpdateTest, McuThatFailedCanBeRepeated)
{
    service.answers["requestMcuUpdate"] = "failed";
    const ToolRun run = updateMcuLate();
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.errors.contains("tarnctl: The update failed: the flasher complained three times"));
    EXPECT_TRUE(run.errors.contains("Its boot loader cannot be damaged"));
    EXPECT_FALSE(run.errors.contains("has left the download folder"));
}

// The service leaves the file also when it could copy it and not delete it.
TEST_F(TarnctlUpdateTest, AFileThatIsStillThereDoesNotTellThatNothingWasTouched)
{
    service.take = Take::No;
    service.answers["requestMcuUpdate"] = "failed";
    const ToolRun run = updateMcuLate();
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.errors.contains("The MCU's firmware may be incomplete now.")) << run.errors.toStdString();
    EXPECT_FALSE(run.errors.contains("before it touched the MCU"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// Its own pauses keep the service from answering so soon once it has touched the MCU.
TEST_F(TarnctlUpdateTest, ARefusalThatComesSoonHasTouchedNothing)
{
    for (const Take way : {Take::No, Take::Yes}) {
        service.take = way;
        service.answers["requestMcuUpdate"] = "failed";
        const ToolRun mcu = update(FirmwareKind::Mcu);
        EXPECT_EQ(mcu.code, 1);
        EXPECT_TRUE(mcu.errors.contains("refused the update before it touched the MCU"))
            << mcu.errors.toStdString();
        EXPECT_FALSE(mcu.errors.contains("may be incomplete"));
        EXPECT_TRUE(folders.downloadNames().isEmpty());
    }
    // Five pauses of 1 s before the flasher, the first before any write, and five after it.
    EXPECT_LT(tarn::updatePlan(FirmwareKind::Mcu).steps.back().untouchedBefore, std::chrono::seconds(10));
    // 2 s without a KVane, and 0.5 s before each message.
    EXPECT_GT(tarn::updatePlan(FirmwareKind::Mcu).steps.back().untouchedBefore, std::chrono::seconds(3));
}

TEST_F(TarnctlUpdateTest, ARefusedEcUpdateHasFlashedNothing)
{
    for (const Take way : {Take::No, Take::Yes}) {
        service.take = way;
        service.answers["requestEcUpdate"] = "failed";
        const ToolRun ec = update(FirmwareKind::Ec);
        EXPECT_EQ(ec.code, 1);
        EXPECT_TRUE(ec.errors.contains("before it ran the EC tool: this update has flashed nothing."))
            << ec.errors.toStdString();
        // The update has not come so far.
        EXPECT_FALSE(ec.errors.contains("reserved"));
        EXPECT_TRUE(folders.downloadNames().isEmpty());
    }
    EXPECT_EQ(service.pipe.commands(), ecCommands + ecCommands);
}

TEST_F(TarnctlUpdateTest, SomebodyElseAtTheConsoleIsToldWhatToDo)
{
    otherUser = tarn::OtherUser {"PC\\admin", "PC\\anna"};
    const ToolRun mcu = update(FirmwareKind::Mcu);
    EXPECT_EQ(mcu.code, 2);
    EXPECT_TRUE(
        mcu.errors.startsWith("tarnctl: tarnctl runs as PC\\admin, but the user at the console is PC\\anna,"))
        << mcu.errors.toStdString();
    EXPECT_TRUE(mcu.errors.contains("\nPut it there and send: tarnctl requestMcuUpdate \"fw.bin\"\n"));
    EXPECT_TRUE(
        mcu.errors.endsWith("\nA service that PC\\admin has started with -exec looks in the folder of "
                            "PC\\admin: for that, go on with --force.\n"));
    EXPECT_TRUE(update(FirmwareKind::Ec).errors.contains("send: tarnctl requestEcUpdate \"fw.bin\"\n"));
    EXPECT_EQ(service.pipe.connections(), 0);
    EXPECT_TRUE(folders.downloadNames().isEmpty());

    EXPECT_EQ(update(FirmwareKind::Ec, {"--force"}).code, 0);
    EXPECT_EQ(service.pipe.commands(), ecCommands);
}

TEST_F(TarnctlUpdateTest, SaysThatAFileOfTheDownloadFolderIsTakenAway)
{
    file = folders.downloaded();
    writeFile(file, "own");
    const ToolRun run = update(FirmwareKind::Mcu);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(service.taken, "own");
    EXPECT_TRUE(run.errors.startsWith("The service takes this file out of the download folder"));
    EXPECT_TRUE(run.errors.contains(QDir::toNativeSeparators(file).toUtf8()));

    writeFile(file, "own");
    service.answers["requestMcuUpdate"] = "failed";
    EXPECT_TRUE(update(FirmwareKind::Mcu).errors.contains("The file has left the download folder"));

    writeFile(file, "own");
    service.take = Take::No;
    EXPECT_FALSE(update(FirmwareKind::Mcu).errors.contains("The file has left the download folder"));
    EXPECT_EQ(readFile(file), "own");
}

TEST_F(TarnctlUpdateTest, AnotherFileOfTheNameKeepsItFromStarting)
{
    writeFile(folders.downloaded(), "own");
    const ToolRun run = update(FirmwareKind::Ec);
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: There is another file of that name"));
    EXPECT_TRUE(service.pipe.commands().isEmpty());
    EXPECT_EQ(readFile(folders.downloaded()), "own");
}

TEST_F(TarnctlUpdateTest, AFileThatCannotBeUsedMakesNoConnection)
{
    file = folders.downloaded("none.bin");
    const ToolRun run = update(FirmwareKind::Ec);
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: There is no file"));
    EXPECT_EQ(service.pipe.connections(), 0);
}

TEST_F(TarnctlUpdateTest, JsonIsTheLastAnswerAndNothingElse)
{
    const ToolRun mcu = update(FirmwareKind::Mcu, {"--json"}, true);
    EXPECT_EQ(mcu.code, 0);
    EXPECT_EQ(mcu.output, "{\"cmd\":\"requestMcuUpdate\",\"data\":\"successed\",\"mcuVer\":\"3.14\"}\n");
    EXPECT_EQ(mcu.errors, "");
    const ToolRun ec = update(FirmwareKind::Ec, {"--json"});
    EXPECT_EQ(ec.output, "{\"cmd\":\"requestEcUpdate\",\"data\":\"successed\"}\n");
    EXPECT_EQ(ec.errors, "");
}

TEST_F(TarnctlUpdateTest, JsonOfAFailureIsTheAnswerThatEndedIt)
{
    service.answers["requestMcuUpdate"] = "failed";
    const ToolRun flashed = updateMcuLate({"--json"});
    EXPECT_EQ(flashed.code, 1);
    EXPECT_TRUE(flashed.output.contains("\"data\":\"failed\""));
    EXPECT_TRUE(flashed.errors.startsWith("tarnctl: The update failed"));
    service.answers["getAccessoryType"] = "dock";
    EXPECT_EQ(update(FirmwareKind::Mcu, {"--json", "--timeout", "1.5"}).output,
        "{\"cmd\":\"getAccessoryType\",\"data\":\"dock\"}\n");
}

TEST_F(TarnctlUpdateTest, OtherMessagesAreNotTheAnswer)
{
    service.pipe.onConnection([this] {
        service.pipe.notify("getAccessoryType", "dock");
        service.pipe.notify("changeAccessoryType", "dock");
    });
    const ToolRun quiet = update(FirmwareKind::Mcu);
    EXPECT_EQ(quiet.code, 0);
    EXPECT_FALSE(quiet.errors.contains("meanwhile"));
    const ToolRun verbose = update(FirmwareKind::Mcu, {"--verbose"});
    EXPECT_EQ(verbose.code, 0);
    EXPECT_TRUE(verbose.errors.contains("meanwhile: changeAccessoryType dock\n"));
}

TEST_F(TarnctlUpdateTest, OnATerminalOtherMessagesTakeTheLine)
{
    service.beforeAnswer = [this](const QString &command) {
        if (command == "requestMcuUpdate")
            service.pipe.notify("changeAccessoryType", "dock");
    };
    const ToolRun run = update(FirmwareKind::Mcu, {"--verbose"}, true);
    EXPECT_TRUE(run.errors.contains(" \rmeanwhile: changeAccessoryType dock\n")) << run.errors.toStdString();
}

TEST_F(TarnctlUpdateTest, TheVerbsUseTheUsersDownloadFolder)
{
    // The download folder of FirmwareFolders lies in this home folder.
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(QFileInfo(folders.firmware()).path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(QFileInfo(folders.firmware()).path()));
    const ToolRun mcu = runTool(service.pipe, {"update-mcu", folders.firmware()});
    const ToolRun ec = runTool(service.pipe, {"update-ec", folders.firmware()});
    qputenv("HOME", home);
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(mcu.code, 0);
    EXPECT_EQ(ec.code, 0);
    EXPECT_EQ(service.pipe.commands(), mcuCommands + ecCommands);
    EXPECT_EQ(service.present.value(2), placed);
    EXPECT_EQ(service.present.value(3), placed);
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
