#include "client/pipe_address.h"
#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/tool_run.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

using namespace tarnClientTest;
using tarn::pipeAddress;

namespace {

// A name whose whole address has so many bytes.
QString nameOfAddressLength(qsizetype length)
{
    return QString(length - pipeAddress(QString()).length, u'x');
}

// The folder of temporary files has this path for as long as it lives.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const QString &path) { qputenv("TMPDIR", QFile::encodeName(path)); }
    ~TemporaryFolder() { before.isEmpty() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before); }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

private:
    const QByteArray before = qgetenv("TMPDIR");
};

} // namespace

TEST(TarnctlPipeAddressTest, TheLongestIsTheLongestOnWhichAServiceCanListen)
{
    const qsizetype longest = pipeAddress("x").longest;
    QLocalServer server;
    const QString last = nameOfAddressLength(longest);
    EXPECT_FALSE(pipeAddress(last).isTooLong());
    EXPECT_TRUE(server.listen(last));
    EXPECT_EQ(server.fullServerName(), pipeAddress(last).text);
    server.close();
    EXPECT_TRUE(pipeAddress(nameOfAddressLength(longest + 1)).isTooLong());
    // What fits the system's address without its NUL character may suit another version of Qt.
    EXPECT_FALSE(server.listen(nameOfAddressLength(longest + 2)));
}

TEST(TarnctlPipeAddressTest, CountsBytesAndTakesWholePaths)
{
    EXPECT_EQ(pipeAddress("/run/über").text, "/run/über");
    EXPECT_EQ(pipeAddress("/run/über").length, 10);
}

TEST(TarnctlPipeAddressTest, ANameThatIsTooLongIsToldFromAnAbsentService)
{
    const QString name = nameOfAddressLength(pipeAddress("x").longest + 1);
    const ToolRun run = runTool({"--pipe", name, "getMcuVersion"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(
        run.errors.startsWith("tarnctl: No service can have this pipe: its full name has 107 bytes, and it "
                              "may have at most 106.\n"))
        << run.errors.toStdString();
    EXPECT_TRUE(run.errors.endsWith(name.toUtf8() + "\nGive --pipe a shorter name.\n"));
}

TEST(TarnctlPipeAddressTest, SoIsAFolderWhosePathIsTooLong)
{
    const QTemporaryDir folder;
    const QString longPath = folder.filePath(QString(120, u'f'));
    ASSERT_TRUE(QDir().mkpath(longPath));
    const TemporaryFolder temporary(longPath);
    const ToolRun run = runTool({"getMcuVersion"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.errors.startsWith("tarnctl: No service can have this pipe: "))
        << run.errors.toStdString();
    EXPECT_TRUE(run.errors.contains("Start both with a TMPDIR of a shorter path."));
}

TEST(TarnctlPipeAddressTest, NobodyWaitsForAServiceThatCannotCome)
{
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = runTool({"--pipe", QString(200, u'x'), "watch", "--reconnect", "--for", "20"});
    EXPECT_EQ(run.code, 3);
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_TRUE(run.errors.contains("No service can have this pipe"));
}
