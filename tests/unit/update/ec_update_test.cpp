#include "support/unprivileged.h"
#include "update/ec_settings.h"
#include "update_fixture.h"

using tarnFirmwareUpdate::loggedBinNameLine;
using tarnFirmwareUpdate::settingsLine;

namespace {

const char settingsFile[] = "function/EC/uiset.ini";

} // namespace

struct SettingsRow
{
    const char *line;
    const char *expected;
};

class EcSetting : public ::testing::TestWithParam<SettingsRow>
{ };

TEST_P(EcSetting, IsRewritten)
{
    EXPECT_EQ(
        settingsLine(GetParam().line, [] { return std::string("BinName=fw.bin"); }), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Lines, EcSetting,
    ::testing::Values(SettingsRow {"ACPI PORT=0x60", "ACPI PORT=0x68"},
        SettingsRow {"FW VERSION SHOW=1", "FW VERSION SHOW=0"},
        SettingsRow {"HEX DISPLAY=1", "HEX DISPLAY=0"}, SettingsRow {"Read Method=2", "Read Method=0"},
        SettingsRow {"IO=0", "IO=1"}, SettingsRow {"[OPTION]", "IO=1"}, SettingsRow {"; VERSION 3", "IO=1"},
        SettingsRow {"BRAM BANK=1", "BRAM BANK=0"}, SettingsRow {"Read BYTES=1", "Read BYTES=3"},
        SettingsRow {"BRAM Start index=0", "BRAM Start index=0x7"},
        SettingsRow {"FlashEnd CMD=0", "FlashEnd CMD=0xFC"}, SettingsRow {"AutoFlash=0", "AutoFlash=1"},
        SettingsRow {"Warring Show=1", "Warring Show=0"}, SettingsRow {"SilentRun=0", "SilentRun=1"},
        SettingsRow {"BinName=old.bin", "BinName=fw.bin"}, SettingsRow {"Shutdown=0", "Shutdown=1"},
        SettingsRow {"  xx AutoFlash yy", "AutoFlash=1"}, SettingsRow {"BinName IO", "IO=1"},
        SettingsRow {"Shutdown BinName", "BinName=fw.bin"}, SettingsRow {"HEX DISPLAY IO", "HEX DISPLAY=0"},
        SettingsRow {"autoflash=0", "autoflash=0"}, SettingsRow {"io=0", "io=0"}, SettingsRow {"", ""},
        SettingsRow {"[Settings]", "[Settings]"}, SettingsRow {"Speed=3", "Speed=3"}));

TEST(EcBinName, IsAnnounced)
{
    const tarnTest::LogCapture log;
    EXPECT_EQ(loggedBinNameLine([] { return std::string("BinName=fw.bin"); }), "BinName=fw.bin");
    EXPECT_EQ(log.lines(), QStringList({"ecFileName line is:  BinName=fw.bin", "write BinName successful!"}));
}

TEST(EcBinName, IsBuiltAgainWhenItDoesNotNameItsKey)
{
    const tarnTest::LogCapture log;
    int built = 0;
    EXPECT_EQ(
        loggedBinNameLine([&built] { return std::string(built++ == 0 ? "x" : "BinName=a"); }), "BinName=a");
    EXPECT_EQ(log.lines(),
        QStringList({"ecFileName line is:  x", "write BinName failed! try again!",
            "again ecFileName line is:  BinName=a", "write BinName successful!"}));
}

class EcSettingsFile : public tarnTest::UpdateTest
{
protected:
    bool modify(const char *name = "fw.bin")
    {
        return updater->modifyEcIniFile("./function/EC/uiset.ini", name);
    }
    [[nodiscard]] QByteArray rewritten(const QByteArray &content)
    {
        machine.folder.write(settingsFile, content);
        EXPECT_TRUE(modify());
        EXPECT_FALSE(exists("temp.ini"));
        return machine.folder.read(settingsFile);
    }
};

TEST_F(EcSettingsFile, IsRewrittenLineByLine)
{
    EXPECT_EQ(rewritten("[Settings]\nAutoFlash=0\nSpeed=3\nBinName=old\n"),
        "[Settings]\nAutoFlash=1\nSpeed=3\nBinName=fw.bin\n");
    EXPECT_EQ(machine.log.lines(),
        QStringList({"modifyEcIniFile Enter |", "ecFileName line is:  BinName=fw.bin",
            "write BinName successful!", "modifyEcIniFile Leave |"}));
}

TEST_F(EcSettingsFile, KeepsTheReturnOfLinesThatAreNotReplaced)
{
    EXPECT_EQ(rewritten("Speed=3\r\nAutoFlash=0\r\n\r\n"), "Speed=3\r\nAutoFlash=1\n\r\n");
}

TEST_F(EcSettingsFile, EndsItsLastLine)
{
    EXPECT_EQ(rewritten("Speed=3\nSilentRun=0"), "Speed=3\nSilentRun=1\n");
    EXPECT_EQ(rewritten(""), "");
    EXPECT_EQ(rewritten("\n\n"), "\n\n");
}

TEST_F(EcSettingsFile, SurvivesNastyBytes)
{
    EXPECT_EQ(rewritten(QByteArray("\xFF\xFE\0a\nIO", 7)), QByteArray("\xFF\xFE\0a\nIO=1\n", 10));
    const QByteArray longLine(200000, 'x');
    EXPECT_EQ(rewritten(longLine + "AutoFlash\n" + longLine), "AutoFlash=1\n" + longLine + '\n');
}

TEST_F(EcSettingsFile, OverwritesALeftoverOfAnEarlierRun)
{
    machine.folder.write("temp.ini", "half of something that was much longer than what comes now");
    EXPECT_EQ(rewritten("IO=0\n"), "IO=1\n");
}

TEST_F(EcSettingsFile, IsNotTouchedWhenItCannotBeOpened)
{
    EXPECT_FALSE(modify());
    EXPECT_EQ(machine.log.lines(), QStringList({"modifyEcIniFile Enter |", "Error opening files!"}));
    EXPECT_FALSE(exists("temp.ini"));
}

TEST_F(EcSettingsFile, IsNotTouchedWhenTheNewOneCannotBeOpened)
{
    machine.folder.write(settingsFile, "IO=0\n");
    QDir().mkpath(machine.folder.path("temp.ini"));
    EXPECT_FALSE(modify());
    EXPECT_EQ(machine.log.lines().last(), "Error opening files!");
    EXPECT_EQ(machine.folder.read(settingsFile), "IO=0\n");
}

TEST_F(EcSettingsFile, IsNotTouchedOnAFullDisk)
{
    machine.folder.write(settingsFile, "IO=0\n");
    QFile::link("/dev/full", machine.folder.path("temp.ini"));
    EXPECT_FALSE(modify());
    EXPECT_EQ(machine.log.lines().last(),
        "W: The settings of the EC tool cannot be replaced: \"./function/EC/uiset.ini\"");
    EXPECT_EQ(machine.folder.read(settingsFile), "IO=0\n");
    EXPECT_FALSE(exists("temp.ini"));
}

// A folder that cannot be read cannot be flushed either, though files can be made in it.
TEST_F(EcSettingsFile, IsReplacedThoughItMayNotBeOnTheDiskYet)
{
    machine.folder.write(settingsFile, "IO=0\n");
    tarnTest::setMode(machine.folder.path("."), 0333);
    {
        const tarnTest::Unprivileged unprivileged;
        EXPECT_TRUE(modify());
    }
    tarnTest::setMode(machine.folder.path("."), 0755);
    EXPECT_EQ(machine.folder.read(settingsFile), "IO=1\n");
    EXPECT_TRUE(machine.log.contains(
        "W: The settings of the EC tool may not be on the disk yet: \"./function/EC/uiset.ini\""));
    EXPECT_EQ(machine.log.lines().last(), "modifyEcIniFile Leave |");
}

TEST_F(EcSettingsFile, TakesNoLineFromAName)
{
    machine.folder.write(settingsFile, "BinName=old\n");
    EXPECT_FALSE(modify("fw.bin\nShutdown=0"));
    EXPECT_FALSE(modify(""));
    EXPECT_EQ(machine.folder.read(settingsFile), "BinName=old\n");
    // Nor does the log.
    EXPECT_EQ(machine.log.lines().filter("W: "),
        QStringList({R"(W: Not a plain name of a firmware file: "fw.bin\nShutdown=0")",
            R"(W: Not a plain name of a firmware file: "")"}));
    EXPECT_FALSE(exists("temp.ini"));
}

class EcTool : public tarnTest::UpdateTest
{ };

TEST_F(EcTool, RunsInItsFolderToItsEnd)
{
    installTool("function/EC/IFU_XE.exe", "echo \"$# arguments\" >told; sleep 0.2; pwd >>told; exit 5");
    updater->ecUpdate();
    EXPECT_EQ(machine.folder.read("function/EC/told"),
        "0 arguments\n" + QFileInfo(machine.folder.path("function/EC")).canonicalFilePath().toLocal8Bit()
            + '\n');
    EXPECT_EQ(machine.log.lines(), QStringList({"ecUpdate Enter |", "ecUpdate Leave |"}));
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(EcTool, ThatIsMissingIsReported)
{
    updater->ecUpdate();
    const QStringList lines = machine.log.lines();
    EXPECT_EQ(lines.first(), "ecUpdate Enter |");
    EXPECT_TRUE(lines.at(1).startsWith("W: The EC tool cannot be started: \"./function/EC/IFU_XE.exe\""));
    EXPECT_EQ(lines.last(), "ecUpdate Leave |");
}

TEST_F(EcTool, DoesNotWaitForInput)
{
    installTool("function/EC/IFU_XE.exe", "timeout 5 cat >input; echo $? >ended");
    updater->ecUpdate();
    EXPECT_EQ(machine.folder.read("function/EC/ended"), "0\n");
}
