#include "unit/client/tarnctl/check/check_fixture.h"

#include "support/unprivileged.h"

#include <QDir>
#include <QTemporaryDir>

namespace tarnClientTest {

using std::chrono::milliseconds;

TEST_F(CheckTest, NeedsTheRecording)
{
    isRecording = false;
    times.growth = milliseconds(200);
    const ToolRun refused = check({"battery"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_TRUE(refused.errors.contains("tarnctl record on")) << refused.errors.data();
    EXPECT_EQ(service.connections(), 0);
    const ToolRun run = check({"--without-recording", "battery"});
    EXPECT_EQ(run.code, 0) << run.output.data();
    EXPECT_TRUE(files("*.requests").isEmpty());
    EXPECT_TRUE(report().contains("recording: none\n"));
}

TEST_F(CheckTest, SaysThatTheRecordingEndedEarly)
{
    times.coverage = milliseconds(100);
    instead = [this](const QString &, const QString &) {
        isRecording = false;
        return false;
    };
    const ToolRun run = check({"battery"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("The recording is incomplete: "
        + path("function/ec-20261121-110000-000.recording").toUtf8() + " does not go on to the last "))
        << run.output.data();
    EXPECT_EQ(noted(), sent());
    EXPECT_TRUE(
        fileText("ec-20261121-110000-000.requests").contains("# the recording ends before the last "));
}

TEST_F(CheckTest, FollowsTheServiceIntoAnotherFile)
{
    instead = [this](const QString &command, const QString &) {
        if (command == "getTarnChargingStatus")
            beginRecording("ec-20261121-120000-000.recording", 1000);
        return false;
    };
    const ToolRun run = check({"battery", "charging", "power-mode"});
    EXPECT_EQ(run.code, 0) << run.output.data();
    EXPECT_EQ(noted("ec-20261121-110000-000.requests") + noted("ec-20261121-120000-000.requests"), sent());
    EXPECT_EQ(noted("ec-20261121-110000-000.requests").last(), "getTarnChargingStatus ");
    EXPECT_EQ(noted("ec-20261121-120000-000.requests").first(), "getTarnPowerMode ");
    EXPECT_TRUE(fileText("ec-20261121-120000-000.requests").startsWith("after "));
    EXPECT_EQ(run.output.count(".requests\n"), 2) << run.output.data();
}

TEST_F(CheckTest, BelongsToTheRecordingThatGrows)
{
    write("function/ec-20991231-110000-000.recording", "header");
    EXPECT_EQ(check({"battery"}).code, 0);
    EXPECT_EQ(files("*.requests"), QStringList("ec-20261121-110000-000.requests"));
}

TEST_F(CheckTest, LeavesRequestsAloneThatItCannotUnderstand)
{
    write("function/ec-20261121-110000-000.requests", "somebody has changed this\n");
    const ToolRun run = check({"battery"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(fileText("ec-20261121-110000-000.requests"), "somebody has changed this\n");
    EXPECT_EQ(noted("ec-20261121-110000-000-2.requests"), sent());
    EXPECT_TRUE(run.output.contains("line 1, cannot be understood, so the requests are in "))
        << run.output.data();
}

TEST_F(CheckTest, KeepsWhatAnEarlierCheckHasWritten)
{
    EXPECT_EQ(check({"battery"}).code, 0);
    EXPECT_EQ(check({"charging"}).code, 0);
    EXPECT_EQ(noted(), sent());
    EXPECT_EQ(files("*.report*.txt").size(), 2);
    EXPECT_EQ(files("*.report-2.txt").size(), 1);
}

TEST_F(CheckTest, AsksForAnotherFolderWhereItMayNotWrite)
{
    const tarnTest::Unprivileged unprivileged;
    const QTemporaryDir current;
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(current.path()));
    tarnTest::setMode(path("function"), 0555);
    EXPECT_EQ(check({"battery"}, "").code, 2);
    const ToolRun run = check({"battery"}, "y\n\n");
    tarnTest::setMode(path("function"), 0755);
    QDir::setCurrent(before);
    EXPECT_EQ(run.code, 0) << run.output.data() << run.errors.data();
    EXPECT_TRUE(run.output.contains("as administrator it could."));
    EXPECT_EQ(QDir(current.path()).entryList(QDir::Files),
        QStringList({"ec-20261121-110000-000.report.txt", "ec-20261121-110000-000.requests"}));
}

} // namespace tarnClientTest
