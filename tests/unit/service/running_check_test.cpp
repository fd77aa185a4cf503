#include "service/running_check.h"

#include "support/log_capture.h"
#include "support/run_folder.h"

#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

namespace {

const QString serviceKey = QStringLiteral("\"TarnService\"");

// A system whose service tool is a script. Here Qt takes the whole command for the name of the program.
class RunningCheck : public ::testing::Test
{
protected:
    RunningCheck()
        : pathBefore(qgetenv("PATH"))
    {
        qputenv("PATH", QFile::encodeName(folder.path(".")) + ':' + pathBefore);
    }
    ~RunningCheck() override { qputenv("PATH", pathBefore); }

    void answer(const QByteArray &script) const
    {
        const QString tool = QStringLiteral("sc query \"TarnService\"");
        folder.write(tool, "#!/bin/sh\n" + script);
        ASSERT_TRUE(
            QFile(folder.path(tool)).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    tarnTest::RunFolder folder;
    tarnTest::LogCapture log;

private:
    QByteArray pathBefore;
};

} // namespace

TEST_F(RunningCheck, SaysNoWhereTheSystemCannotBeAsked)
{
    EXPECT_FALSE(isServiceRunning(serviceKey));
}

TEST_F(RunningCheck, SaysYesWhenTheAnswerSaysRunning)
{
    answer("echo 'SERVICE_NAME: TarnService'\necho '        STATE              : 4  RUNNING'\n");
    EXPECT_TRUE(isServiceRunning(serviceKey));
}

TEST_F(RunningCheck, LooksForTheKeyAsItIs)
{
    answer("echo RUNNING\n");
    EXPECT_FALSE(isServiceRunning(QStringLiteral("TarnService")));
    EXPECT_FALSE(isServiceRunning(QStringLiteral("\"Tarn Service\"")));
}

TEST_F(RunningCheck, SaysNoToAnyOtherAnswer)
{
    for (const char *script : {"echo 'STATE : 1  STOPPED'\n", "echo 'state : 4  running'\n", "exit 0\n",
             "echo 'FAILED 1060'\nexit 1060\n", "echo RUNNING >&2\n"}) {
        answer(script);
        EXPECT_FALSE(isServiceRunning(serviceKey)) << script;
    }
}

TEST_F(RunningCheck, DoesNotCareForTheExitCode)
{
    answer("echo RUNNING\nexit 5\n");
    EXPECT_TRUE(isServiceRunning(serviceKey));
}

TEST_F(RunningCheck, WaitsThirtySecondsAtMost)
{
    EXPECT_EQ(runningCheckTimeout, std::chrono::seconds(30));
    answer("exec sleep 300\n");
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(isServiceRunning(serviceKey, std::chrono::milliseconds(100)));
    EXPECT_GE(timer.elapsed(), 100);
    EXPECT_LT(timer.elapsed(), 10000);
}
