#include "client/tarnctl/record_command.h"

#include "support/unprivileged.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"
#include "unit/client/tarnctl/tool_run.h"

#include <QDir>
#include <QFileInfo>

#include <sstream>

using namespace tarnctl;

namespace tarnClientTest {

// The recording of an installed service that runs.
class RecordCommandTest : public Diagnosis
{
protected:
    ToolRun record(const QString &word)
    {
        std::ostringstream output;
        std::ostringstream errors;
        ToolStreams streams {std::make_shared<std::istringstream>(), output, errors};
        const ExitCode code = runRecord(word, streams, computer);
        return {static_cast<int>(code), QByteArray::fromStdString(output.str()),
            QByteArray::fromStdString(errors.str())};
    }
    void stopService()
    {
        computer.entry.processId = 0;
        computer.programs.clear();
    }
    [[nodiscard]] bool isOn() const { return QFileInfo::exists(path("function/ec_recording.on")); }
};

TEST_F(RecordCommandTest, NeedsARestartOfAServiceThatRuns)
{
    const ToolRun on = record("on");
    EXPECT_EQ(on.code, 0);
    EXPECT_TRUE(isOn());
    EXPECT_TRUE(on.output.startsWith("The recording is on.\nIt begins when the service is restarted "))
        << on.output.data();
    EXPECT_TRUE(on.output.contains("sc.exe start \"Tarn Service\""));
    EXPECT_TRUE(on.output.contains(QDir::toNativeSeparators(path("function")).toUtf8()));
    const ToolRun off = record("off");
    EXPECT_EQ(off.code, 0);
    EXPECT_FALSE(isOn());
    EXPECT_TRUE(
        off.output.startsWith("The recording is off.\nA recording that runs goes on until the service is "))
        << off.output.data();
    EXPECT_EQ(on.errors + off.errors, "");
}

TEST_F(RecordCommandTest, BeginsWithTheServiceThatDoesNotRun)
{
    stopService();
    EXPECT_TRUE(record("on").output.startsWith(
        "The recording is on.\nIt begins when the service is started.\nThe recordings are in "));
    EXPECT_EQ(record("off").output, "The recording is off.\n");
}

TEST_F(RecordCommandTest, SaysWhatItWasAlready)
{
    EXPECT_TRUE(record("off").output.startsWith("The recording was off already.\n"));
    static_cast<void>(record("on"));
    const ToolRun again = record("on");
    EXPECT_EQ(again.code, 0);
    EXPECT_TRUE(again.output.startsWith("The recording was on already.\nIf no new recording is written, "));
    EXPECT_TRUE(isOn());
}

TEST_F(RecordCommandTest, NeedsTheFolder)
{
    ASSERT_TRUE(QDir(path("function")).removeRecursively());
    const ToolRun run = record("on");
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.contains("the folder is not there")) << run.errors.data();
    EXPECT_EQ(run.output, "");
}

TEST_F(RecordCommandTest, NeedsTheRightToWrite)
{
    const tarnTest::Unprivileged unprivileged;
    tarnTest::setMode(path("function"), 0555);
    const ToolRun refused = record("on");
    EXPECT_EQ(refused.code, 2);
    EXPECT_TRUE(refused.errors.contains("run tarnctl as administrator")) << refused.errors.data();
    tarnTest::setMode(path("function"), 0755);
    static_cast<void>(record("on"));
    tarnTest::setMode(path("function"), 0555);
    EXPECT_EQ(record("off").code, 2);
    tarnTest::setMode(path("function"), 0755);
    EXPECT_TRUE(isOn());
}

TEST_F(RecordCommandTest, TakesTwoWords)
{
    const ToolRun run = record("maybe");
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.contains("\"maybe\""));
    EXPECT_EQ(runTool({"record"}).code, 2);
    EXPECT_EQ(runTool({"record", "on", "off"}).code, 2);
}

} // namespace tarnClientTest
