#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <QDir>

using InstallationCheck = tarnClientTest::Diagnosis;

TEST_F(InstallationCheck, NamesTheFolder)
{
    EXPECT_EQ(lineOf("installation"), "good: FOLDER");
    remove("TarnService.exe");
    EXPECT_EQ(lineOf("installation"),
        "bad: no TarnService in FOLDER -> use the tarnctl that lies beside it, or run the installer again");
}

TEST_F(InstallationCheck, TellsOfAnInterruptedUpdate)
{
    for (const char *name : {"update.new", "update.old"}) {
        ASSERT_TRUE(QDir().mkpath(path(name)));
        EXPECT_EQ(lineOf("installation"),
            QString("bad: an update was interrupted: FOLDER/%1 -> run the installer again").arg(name));
        ASSERT_TRUE(QDir(path(name)).removeRecursively());
    }
}
