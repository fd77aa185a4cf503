#include "client/staged_firmware.h"
#include "support/unprivileged.h"
#include "unit/client/firmware_folders.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <thread>

using namespace tarnClientTest;
using tarn::FirmwareKind;
using tarn::StagedFirmware;

namespace {

QString objectionTo(const QString &file, FirmwareKind kind = FirmwareKind::Mcu)
{
    return StagedFirmware::objection(file, kind).value_or(QString());
}

} // namespace

TEST(TarnctlStagedFirmwareTest, FindsNothingWrongWithAnOrdinaryFile)
{
    const FirmwareFolders folders;
    EXPECT_FALSE(StagedFirmware::objection(folders.firmware(), FirmwareKind::Mcu).has_value());
    EXPECT_FALSE(StagedFirmware::objection(folders.firmware(), FirmwareKind::Ec).has_value());
}

TEST(TarnctlStagedFirmwareTest, RefusesWhatIsNoFirmwareFile)
{
    const FirmwareFolders folders;
    EXPECT_TRUE(objectionTo(folders.downloaded("none.bin")).startsWith("There is no file \""));
    EXPECT_TRUE(objectionTo(QString()).startsWith("There is no file \""));
    EXPECT_TRUE(objectionTo(folders.downloads()).endsWith("is no regular file."));
    writeFile(folders.downloaded("empty.bin"), "");
    EXPECT_TRUE(objectionTo(folders.downloaded("empty.bin")).endsWith("is empty."));
    // The rule itself is the service's own and tested there.
    for (const char *name : {"tool.exe", "uiset.ini", "aux.bin"}) {
        writeFile(folders.downloaded(name), "x");
        EXPECT_TRUE(objectionTo(folders.downloaded(name))
                        .startsWith(QStringLiteral("A firmware file cannot be named \"%1\".").arg(name)));
    }
    writeFile(folders.downloaded("BIOS.bin"), "x");
    EXPECT_TRUE(
        objectionTo(folders.downloaded("BIOS.bin"), FirmwareKind::Ec).contains("The name holds \"IO\""));
    EXPECT_EQ(objectionTo(folders.downloaded("BIOS.bin")), QString());
}

TEST(TarnctlStagedFirmwareTest, RefusesAFileThatMayNotBeRead)
{
    const FirmwareFolders folders;
    tarnTest::setMode(folders.firmware(), 0200);
    const tarnTest::Unprivileged unprivileged;
    EXPECT_TRUE(objectionTo(folders.firmware()).contains("cannot be read: "));
}

TEST(TarnctlStagedFirmwareTest, CopiesAndTakesTheCopyBack)
{
    const FirmwareFolders folders;
    {
        StagedFirmware staged(folders.downloads());
        EXPECT_FALSE(staged.place(folders.firmware()).has_value());
        EXPECT_EQ(staged.name(), "fw.bin");
        EXPECT_EQ(staged.path(), folders.downloaded());
        EXPECT_TRUE(staged.isCopy());
        EXPECT_TRUE(staged.isThere());
        // No other name is left from the copying.
        EXPECT_EQ(folders.downloadNames(), QStringList {"fw.bin"});
        EXPECT_EQ(readFile(folders.downloaded()), "new firmware");
    }
    EXPECT_TRUE(folders.downloadNames().isEmpty());
    EXPECT_EQ(readFile(folders.firmware()), "new firmware");
}

TEST(TarnctlStagedFirmwareTest, LeavesTheCopyWhenTold)
{
    const FirmwareFolders folders;
    {
        StagedFirmware staged(folders.downloads());
        EXPECT_FALSE(staged.place(folders.firmware()).has_value());
        staged.leave();
    }
    EXPECT_EQ(readFile(folders.downloaded()), "new firmware");
}

TEST(TarnctlStagedFirmwareTest, KnowsThatTheServiceHasTakenIt)
{
    const FirmwareFolders folders;
    StagedFirmware staged(folders.downloads());
    EXPECT_FALSE(staged.place(folders.firmware()).has_value());
    ASSERT_TRUE(QFile::remove(folders.downloaded()));
    EXPECT_FALSE(staged.isThere());
}

TEST(TarnctlStagedFirmwareTest, AProtectedFileCanBeTakenBackToo)
{
    const FirmwareFolders folders;
    ASSERT_TRUE(QFile::setPermissions(folders.firmware(), QFileDevice::ReadOwner));
    StagedFirmware staged(folders.downloads());
    EXPECT_FALSE(staged.place(folders.firmware()).has_value());
    EXPECT_TRUE(QFile::permissions(folders.downloaded()).testFlag(QFileDevice::WriteOwner));
}

TEST(TarnctlStagedFirmwareTest, AFileOfTheDownloadFolderStaysAsItIs)
{
    const FirmwareFolders folders;
    writeFile(folders.downloaded(), "own");
    {
        StagedFirmware staged(folders.downloads());
        EXPECT_FALSE(staged.place(folders.downloads() + "/../Downloads/fw.bin").has_value());
        EXPECT_FALSE(staged.isCopy());
    }
    EXPECT_EQ(readFile(folders.downloaded()), "own");
}

TEST(TarnctlStagedFirmwareTest, TakesTheSameContentForTheFileItself)
{
    const FirmwareFolders folders;
    writeFile(folders.downloaded(), "new firmware");
    {
        StagedFirmware staged(folders.downloads());
        EXPECT_FALSE(staged.place(folders.firmware()).has_value());
        EXPECT_FALSE(staged.isCopy());
    }
    EXPECT_EQ(folders.downloadNames(), QStringList {"fw.bin"});
}

TEST(TarnctlStagedFirmwareTest, AnotherFileOfTheNameIsNotTouched)
{
    const FirmwareFolders folders;
    // As long as the new one, and longer.
    for (const char *content : {"own firmware", "my own document"}) {
        writeFile(folders.downloaded(), content);
        {
            StagedFirmware staged(folders.downloads());
            const QString objection = staged.place(folders.firmware()).value_or(QString());
            EXPECT_TRUE(objection.startsWith("There is another file of that name"))
                << objection.toStdString();
        }
        EXPECT_EQ(readFile(folders.downloaded()), content);
        EXPECT_EQ(folders.downloadNames(), QStringList {"fw.bin"});
    }
}

TEST(TarnctlStagedFirmwareTest, AFolderOrADeadLinkOfTheNameIsInTheWay)
{
    const FirmwareFolders folders;
    ASSERT_TRUE(QDir().mkdir(folders.downloaded()));
    EXPECT_TRUE(StagedFirmware(folders.downloads()).place(folders.firmware()).has_value());
    ASSERT_TRUE(QDir().rmdir(folders.downloaded()));
    ASSERT_TRUE(QFile::link(folders.downloaded("gone"), folders.downloaded()));
    EXPECT_TRUE(StagedFirmware(folders.downloads()).place(folders.firmware()).has_value());
    EXPECT_TRUE(QFileInfo(folders.downloaded()).isSymLink());
}

TEST(TarnctlStagedFirmwareTest, AFileThatReplacedTheCopyIsNotRemoved)
{
    const FirmwareFolders folders;
    {
        StagedFirmware staged(folders.downloads());
        EXPECT_FALSE(staged.place(folders.firmware()).has_value());
        writeFile(folders.downloaded(), "somebody else's");
    }
    EXPECT_EQ(readFile(folders.downloaded()), "somebody else's");
}

TEST(TarnctlStagedFirmwareTest, MakesTheDownloadFolder)
{
    const FirmwareFolders folders;
    StagedFirmware staged(folders.downloaded("deeper/still"));
    EXPECT_FALSE(staged.place(folders.firmware()).has_value());
    EXPECT_EQ(readFile(folders.downloaded("deeper/still/fw.bin")), "new firmware");
}

TEST(TarnctlStagedFirmwareTest, SaysWhenThereCanBeNoDownloadFolder)
{
    const FirmwareFolders folders;
    EXPECT_TRUE(StagedFirmware(QString()).place(folders.firmware()).has_value());
    // A file is in the way.
    EXPECT_TRUE(StagedFirmware(folders.firmware() + "/Downloads").place(folders.firmware()).has_value());
}

TEST(TarnctlStagedFirmwareTest, AFailedCopyLeavesNothing)
{
    const FirmwareFolders folders;
    // Gone between the check and the copying.
    const QString missing = folders.downloaded("vanished.bin");
    StagedFirmware staged(folders.downloads());
    EXPECT_TRUE(staged.place(missing).value_or(QString()).startsWith("The file cannot be copied"));
    EXPECT_FALSE(staged.isCopy());
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// As two updates of one program do.
TEST(TarnctlStagedFirmwareTest, CopiesMadeAtOnceDoNotDisturbEachOther)
{
    const FirmwareFolders folders;
    const QString names[] = {"one.bin", "two.bin"};
    for (const QString &name : names)
        writeFile(folders.firmware() + name, name.toUtf8().repeated(100000));
    std::atomic<int> wrong = 0;
    const auto copyOften = [&](const QString &name) {
        for (int round = 0; round < 100; ++round) {
            StagedFirmware staged(folders.downloads());
            const bool isPlaced = !staged.place(folders.firmware() + name).has_value();
            if (!isPlaced || readFile(staged.path()) != readFile(folders.firmware() + name))
                ++wrong;
        }
    };
    std::thread other(copyOften, names[1]);
    copyOften(names[0]);
    other.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}
