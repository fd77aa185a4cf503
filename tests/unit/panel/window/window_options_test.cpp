#include "panel/window/window_options.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

class WindowOptionsTest : public ::testing::Test
{
protected:
    void TearDown() override { qunsetenv("TARN_SIMULATOR_STATE"); }

    void makeService() const
    {
        QFile program(folder.filePath(QStringLiteral("TarnService")));
        ASSERT_TRUE(program.open(QIODevice::WriteOnly));
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }

    const QTemporaryDir folder;
    const QString beside = folder.filePath(QStringLiteral("function/simulated_computer.state"));
    WindowOptions options {{}, QStringLiteral("tarnPipe"), folder.path()};
};

} // namespace

TEST_F(WindowOptionsTest, TakesTheComputerOfTheServiceBesideIt)
{
    EXPECT_EQ(stateFileOf(options), QString()) << "as tarnsim";
    makeService();
    EXPECT_EQ(stateFileOf(options), beside) << "it will be made";
    options.startsService = false;
    EXPECT_EQ(stateFileOf(options), QString());
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("function")));
    QFile state(beside);
    ASSERT_TRUE(state.open(QIODevice::WriteOnly));
    EXPECT_EQ(stateFileOf(options), beside);
}

TEST_F(WindowOptionsTest, TakesTheNamedComputerBeforeAllOthers)
{
    makeService();
    qputenv("TARN_SIMULATOR_STATE", "other.state");
    EXPECT_EQ(stateFileOf(options), QDir::current().absoluteFilePath(QStringLiteral("other.state")));
    options.stateFile = QStringLiteral("named.state");
    EXPECT_EQ(stateFileOf(options), QDir::current().absoluteFilePath(QStringLiteral("named.state")));
}

TEST_F(WindowOptionsTest, StartsNothingForAnotherPipe)
{
    EXPECT_EQ(startFolder(options), folder.path());
    options.pipeName = QStringLiteral("otherPipe");
    EXPECT_EQ(startFolder(options), QString());
}
