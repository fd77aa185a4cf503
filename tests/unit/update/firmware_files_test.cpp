#include "update_fixture.h"

#include "support/pipe_peer.h"
#include "support/resource_limit.h"
#include "support/unprivileged.h"
#include "update/firmware_file_name.h"

#include <thread>

using namespace tarnDeviceInfos;
using tarnFirmwareUpdate::isSafeFirmwareName;

TEST(FirmwareFileName, AcceptsPlainNames)
{
    for (const char *name : {"fw.bin", "KVane 1.24 (final).hex", "a", ".hidden", "..bin", "firmware",
             "com10.bin", "console.bin", "exe.bin", "fw.exe.bin"})
        EXPECT_TRUE(isSafeFirmwareName(name)) << name;
}

TEST(FirmwareFileName, RefusesWhatLeavesTheFolderOrSmuggles)
{
    for (const char *name : {"", ".", "..", "-", "-w", "../fw.bin", "a/b", "/etc/passwd", "a\\b",
             "..\\fw.bin", "C:fw.bin", "fw.bin:stream", "\\\\host\\share\\fw.bin", "fw\nBinName=other",
             "fw\r", "\tfw", "fw\x7F", "fw.bin.", "fw.bin ", "fw?.bin", "f*w", "\"fw\"", "a<b", "a>b", "a|b"})
        EXPECT_FALSE(isSafeFirmwareName(QString::fromLatin1(name))) << name;
    EXPECT_FALSE(isSafeFirmwareName(QString("fw") + QChar(0) + ".bin"));
    EXPECT_FALSE(isSafeFirmwareName(QString("fw") + QChar(0x85)));
    EXPECT_FALSE(isSafeFirmwareName(QString(256, 'a')));
    EXPECT_TRUE(isSafeFirmwareName(QString(255, 'a')));
}

TEST(FirmwareFileName, RefusesDevices)
{
    for (const char *name : {"con", "PRN", "prn.bin", "NUL", "aux.bin", "COM1", "com1.bin", "Lpt9.txt",
             "nul .bin", "CONIN$", "conout$.bin", "COM\xC2\xB9", "lpt\xC2\xB2.bin", "Com\xC2\xB3.a.b"})
        EXPECT_FALSE(isSafeFirmwareName(QString::fromUtf8(name))) << name;
    for (int number = 0; number <= 9; ++number) {
        EXPECT_FALSE(isSafeFirmwareName(QString("com%1").arg(number)));
        EXPECT_FALSE(isSafeFirmwareName(QString("LPT%1.bin").arg(number)));
    }
}

TEST(FirmwareFileName, RefusesWhatTheToolsWouldLoad)
{
    for (const char *name : {"stm32flash.exe", "IFU_XE.EXE", "uiset.ini", "version.dll", "x.CMD",
             "IFU_XE.exe.local", "IFU_XE.exe.manifest"})
        EXPECT_FALSE(isSafeFirmwareName(name)) << name;
    for (const char *ending : {"exe", "dll", "com", "scr", "cpl", "ocx", "sys", "drv", "bat", "cmd", "ps1",
             "vbs", "js", "msi", "reg", "inf", "cfg", "ini", "config", "manifest", "local", "lnk"})
        EXPECT_FALSE(isSafeFirmwareName(QString("fw.%1").arg(ending))) << ending;
}

class McuFile : public tarnTest::UpdateTest
{
protected:
    McuFile() { installFlasher("cp \"$2\" flashed"); }
    const QString copied = "File copied successfully to: \"./function/MCU/fw.bin\"";
};

TEST_F(McuFile, IsTakenAndFlashed)
{
    download("new");
    machine.folder.write("function/MCU/fw.bin", "old");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    EXPECT_EQ(machine.folder.read("function/MCU/flashed"), "new");
    EXPECT_FALSE(exists("Downloads/fw.bin"));
    EXPECT_EQ(machine.log.lines().mid(0, 3), QStringList({"file is exist!", copied, "mcuUpdate Enter |"}));
}

TEST_F(McuFile, StaysInTheToolsFolderWhenThereIsNoKVane)
{
    attachAccessory(ACCESSORY_DOCK);
    download("new");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), -1);
    EXPECT_EQ(machine.folder.read("function/MCU/fw.bin"), "new");
    EXPECT_FALSE(exists("Downloads/fw.bin"));
    EXPECT_EQ(flasherRuns(), 0);
}

TEST_F(McuFile, ThatWasNotDownloadedTouchesNothing)
{
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    EXPECT_EQ(machine.log.lines().first(), "file is exist!");
    EXPECT_TRUE(machine.log.lines().last().startsWith("File copy failed: "));
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(flasherRuns(), 0);
}

TEST_F(McuFile, NeedsADownloadFolder)
{
    QDir().rmdir(machine.folder.path("Downloads"));
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    EXPECT_EQ(machine.log.lines(), QStringList({"Destination directory does not exist."}));
}

TEST_F(McuFile, IsKeptWhenItCannotBeCopied)
{
    download("new");
    QDir().mkpath(machine.folder.path("function/MCU/fw.bin")); // a folder in the copy's place
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    EXPECT_TRUE(exists("Downloads/fw.bin"));
    EXPECT_TRUE(machine.log.lines().last().startsWith("File copy failed: "));
}

TEST_F(McuFile, OfAnUnsafeNameIsRefusedBeforeAnythingIsTouched)
{
    machine.folder.write("fw.bin", "outside");
    for (const char *name : {"../fw.bin", "stm32flash.exe", ""}) {
        machine.log.clear();
        EXPECT_EQ(updater->copyMcuFile(name), 1);
        EXPECT_EQ(machine.log.lines(),
            QStringList({QString("W: Not a plain name of a firmware file: \"%1\"").arg(name)}));
    }
    EXPECT_EQ(machine.folder.read("fw.bin"), "outside");
    EXPECT_EQ(flasherRuns(), 0);
}

// Only the user may read the folder, so every access without the user's rights fails.
TEST_F(McuFile, IsTakenFromTheConsoleUserInTheServiceSession)
{
    QDir().mkpath(machine.folder.path("hidden"));
    machine.folder.write("hidden/fw.bin", "of the user");
    session.downloadFolder = machine.folder.path("user");
    session.onRightsOfUser = [](bool taken) {
        EXPECT_TRUE(taken ? QDir().rename("hidden", "user") : QDir().rename("user", "hidden"));
    };
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1); // not from an ordinary session
    session.serviceSession = true;
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    EXPECT_EQ(machine.folder.read("function/MCU/flashed"), "of the user");
    EXPECT_FALSE(exists("hidden/fw.bin"));
    download("own");
    machine.folder.write("hidden/fw.bin", "of the user");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0); // the own folder comes first
    EXPECT_EQ(machine.folder.read("function/MCU/flashed"), "own");
}

// A partial firmware must never lie beside the flasher, under any name, nor replace a whole one.
TEST_F(McuFile, ThatIsCutOffLeavesWhatWasThere)
{
    download(QByteArray(1000000, 'x'));
    machine.folder.write("function/MCU/fw.bin", "old");
    {
        const tarnTest::FileSizeLimit limit(100000);
        EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    }
    EXPECT_EQ(machine.log.lines().last(), "File copy failed: \"File too large\"");
    EXPECT_EQ(machine.folder.read("function/MCU/fw.bin"), "old");
    EXPECT_EQ(QDir("function/MCU").entryList(QDir::Files), QStringList({"fw.bin", "stm32flash.exe"}));
    EXPECT_FALSE(exists("function/MCU.part"));
    EXPECT_TRUE(exists("Downloads/fw.bin"));
    EXPECT_EQ(flasherRuns(), 0);
}

TEST_F(McuFile, IsNotMistakenForWhatAKilledServiceHasLeft)
{
    machine.folder.write("function/MCU.part", "half of something that was much longer than what comes now");
    download("new");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    EXPECT_EQ(machine.folder.read("function/MCU/flashed"), "new");
    EXPECT_FALSE(exists("function/MCU.part"));
}

TEST_F(McuFile, IsNotTakenWhileAFlasherOfAnEarlierRunWrites)
{
    installFlasher(untilGo);
    QProcess orphan;
    orphan.setWorkingDirectory(machine.folder.path("function/MCU"));
    orphan.start(machine.folder.path("function/MCU/stm32flash.exe"), QStringList());
    ASSERT_TRUE(tarnTest::waitUntil([this] { return exists("function/MCU/running"); }));
    download("new");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_TRUE(exists("Downloads/fw.bin"));
    EXPECT_FALSE(exists("function/MCU/fw.bin"));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"W: Refused, because this tool is running already: \"./function/MCU/stm32flash.exe\""}));
    machine.folder.write("function/MCU/go", "");
    orphan.waitForFinished();
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
}

TEST_F(McuFile, OfTheConsoleUserThatIsCutOffIsNotLeftBesideTheTool)
{
    QDir().mkpath(machine.folder.path("user"));
    machine.folder.write("user/fw.bin", QByteArray(1000000, 'x'));
    session.serviceSession = true;
    session.downloadFolder = machine.folder.path("user");
    {
        const tarnTest::FileSizeLimit limit(100000);
        EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    }
    EXPECT_EQ(machine.log.lines().last(), "File copy failed: \"File too large\"");
    EXPECT_FALSE(exists("function/MCU/fw.bin"));
    EXPECT_TRUE(exists("user/fw.bin"));
}

// The file is looked at twice before it is copied, and deleted afterwards.
TEST_F(McuFile, OfAConsoleUserWhoLogsOffMeanwhileIsKept)
{
    QDir().mkpath(machine.folder.path("user"));
    machine.folder.write("user/fw.bin", "of the user");
    session.serviceSession = true;
    const auto logOffAfter = [this](int actions) {
        session.downloadFolder = machine.folder.path("user");
        session.onRightsOfUser = [this, actions](bool taken) mutable {
            if (!taken && --actions == 0)
                session.downloadFolder.clear();
        };
    };
    logOffAfter(2);
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    EXPECT_EQ(machine.log.lines().last(), "File copy failed: \"Nobody is logged on at the console.\"");
    EXPECT_FALSE(exists("function/MCU/fw.bin"));
    logOffAfter(3);
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    EXPECT_TRUE(machine.log.contains(
        QString("W: The downloaded file cannot be deleted: \"%1\" \"Nobody is logged on at the console.\"")
            .arg(machine.folder.path("user/fw.bin"))));
    EXPECT_TRUE(exists("user/fw.bin"));
}

TEST_F(McuFile, OfTheConsoleUserThatCannotBeReadIsKept)
{
    session.serviceSession = true;
    session.downloadFolder = machine.folder.path("user");
    QDir().mkpath(machine.folder.path("user/fw.bin")); // a folder in the file's place
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 1);
    EXPECT_TRUE(machine.log.lines().last().startsWith("File copy failed: "));
    EXPECT_TRUE(exists("user/fw.bin"));
    EXPECT_FALSE(exists("function/MCU/fw.bin"));
}

TEST_F(McuFile, ThatWasWriteProtectedCanBeReplaced)
{
    download("first");
    QFile::setPermissions(machine.folder.path("Downloads/fw.bin"), QFile::ReadOwner);
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    EXPECT_TRUE(QFile::permissions(machine.folder.path("function/MCU/fw.bin")) & QFile::WriteOwner);
    download("second");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    EXPECT_EQ(machine.folder.read("function/MCU/flashed"), "second");
}

TEST_F(McuFile, OfOneUpdateIsNotReplacedByTheNext)
{
    installFlasher("touch running; cat fw.bin >>told; sleep 0.2; cat fw.bin >>told");
    download("first ");
    std::thread other([this] { EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0); });
    EXPECT_TRUE(tarnTest::waitUntil([this] { return exists("function/MCU/running"); }));
    download("second ");
    EXPECT_EQ(updater->copyMcuFile("fw.bin"), 0);
    other.join();
    EXPECT_EQ(machine.folder.read("function/MCU/told"), "first first second second ");
}

class EcFile : public tarnTest::UpdateTest
{ };

TEST_F(EcFile, IsTakenAndNothingIsFlashed)
{
    download("new");
    EXPECT_EQ(updater->copyEcFile("fw.bin"), 0);
    EXPECT_EQ(machine.folder.read("function/EC/fw.bin"), "new");
    EXPECT_FALSE(exists("Downloads/fw.bin"));
    EXPECT_EQ(machine.log.lines(),
        QStringList({QString("\"%1/Downloads/fw.bin\" 11111111112333333333").arg(QDir::homePath()),
            "file is exist!", "File copied successfully to: \"./function/EC/fw.bin\""}));
}

TEST_F(EcFile, SaysWhatFailed)
{
    EXPECT_NE(updater->copyEcFile("fw.bin"), 0);
    EXPECT_TRUE(machine.log.lines().last().startsWith("File copy failed: "));
    QDir().rmdir(machine.folder.path("Downloads"));
    EXPECT_NE(updater->copyEcFile("fw.bin"), 0);
    EXPECT_EQ(machine.log.lines().last(), "Destination directory does not exist.");
    EXPECT_NE(updater->copyEcFile("..\\fw.bin"), 0);
    EXPECT_TRUE(machine.log.lines().last().startsWith("W: Not a plain name"));
}

// A folder that cannot be read cannot be flushed either, though files can be made in it.
TEST_F(EcFile, IsNotDeletedFromTheDownloadsUnlessItsCopyIsSafe)
{
    download("new");
    tarnTest::setMode(machine.folder.path("function/EC"), 0333);
    {
        const tarnTest::Unprivileged unprivileged;
        EXPECT_EQ(updater->copyEcFile("fw.bin"), 0);
    }
    tarnTest::setMode(machine.folder.path("function/EC"), 0755);
    EXPECT_EQ(machine.folder.read("function/EC/fw.bin"), "new");
    EXPECT_TRUE(exists("Downloads/fw.bin"));
    EXPECT_TRUE(machine.log.lines().last().startsWith(
        "W: The copy may not be on the disk yet, so the download is kept: "));
}
