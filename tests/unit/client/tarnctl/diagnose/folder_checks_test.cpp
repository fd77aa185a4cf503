#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <QDir>

using namespace tarnctl;

using FoldersCheck = tarnClientTest::Diagnosis;

TEST_F(FoldersCheck, OfDownloadsHaveToBeThere)
{
    EXPECT_EQ(lineOf("download folder"), "good: FOLDER/downloads, of this user");
    ASSERT_TRUE(QDir(path("downloads")).removeRecursively());
    EXPECT_EQ(lineOf("download folder"),
        "bad: not there: FOLDER/downloads -> make it; firmware for an update has to be put there");
    computer.installed = folder.path();
    computer.entry = {};
    EXPECT_TRUE(lineOf("download folder").startsWith("unknown: not there: FOLDER/downloads"));
    computer.downloads.clear();
    EXPECT_EQ(lineOf("download folder"),
        "unknown: the system does not tell -> see \"When something is wrong\" in docs/operations.md");
}

TEST_F(FoldersCheck, NeedRoom)
{
    constexpr qint64 mib = 1024 * 1024;
    computer.room = 100 * mib;
    EXPECT_EQ(lineOf("free disk"), "good: 100 MiB at FOLDER");
    computer.room = 100 * mib - 1;
    EXPECT_EQ(lineOf("free disk"), "bad: 99 MiB at FOLDER -> make room: at least 100 MiB");
    computer.room = 0;
    EXPECT_EQ(lineOf("free disk"), "bad: 0 MiB at FOLDER -> make room: at least 100 MiB");
    computer.room = {};
    EXPECT_EQ(
        lineOf("free disk"), "unknown: the system does not tell -> look whether the folder is still there");
}
