#include "platform/processes.h"

#include <gtest/gtest.h>

#include <QProcess>

using tarnPlatform::waitForEnd;

TEST(ProcessWait, LastsUntilTheProcessHasEnded)
{
    QProcess process;
    process.start("/bin/sh", {"-c", "sleep 0.3; exit 7"});
    EXPECT_TRUE(waitForEnd(process));
    EXPECT_EQ(process.state(), QProcess::NotRunning);
    EXPECT_EQ(process.exitCode(), 7);
}

TEST(ProcessWait, MayEndBeforeTheProcess)
{
    QProcess process;
    process.start("/bin/sh", {"-c", "read end"});
    EXPECT_FALSE(waitForEnd(process, 200));
    EXPECT_NE(process.state(), QProcess::NotRunning);
    process.closeWriteChannel();
    EXPECT_TRUE(waitForEnd(process, 30000));
}

TEST(ProcessWait, IsNoneForWhatDoesNotRun)
{
    QProcess process;
    EXPECT_TRUE(waitForEnd(process));
    process.start("/nowhere/program", QStringList());
    EXPECT_TRUE(waitForEnd(process));
}
