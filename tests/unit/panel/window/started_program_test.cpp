#include "panel/window/started_program.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

using State = StartedProgram::State;

const ProgramKind kind {
    QStringLiteral("sleeper"), {QStringLiteral("argument")}, QStringLiteral("The sleeper")};

// A folder with a program that is the given shell script.
class StartedProgramTest : public ::testing::Test
{
protected:
    void write(const QByteArray &script) const
    {
        QFile file(folder.filePath(QStringLiteral("sleeper")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }

    const QTemporaryDir folder;
};

constexpr int boundMs = 20000;

} // namespace

TEST_F(StartedProgramTest, RunsUntilItIsAskedToEnd)
{
    write("echo \"$1\" > started\nexec sleep 100\n");
    StartedProgram program(kind, folder.path());
    EXPECT_EQ(program.state(), State::None);
    EXPECT_TRUE(program.mayBeStarted());
    EXPECT_EQ(program.text(), QString());
    program.start();
    EXPECT_EQ(program.state(), State::Running);
    EXPECT_FALSE(program.mayBeStarted());
    EXPECT_EQ(program.text(), QStringLiteral("The sleeper was started for this window and ends with it."));
    QFile started(folder.filePath(QStringLiteral("started"))); // in its own folder
    ASSERT_TRUE(QTest::qWaitFor([&] { return started.size() > 0; }, boundMs));
    ASSERT_TRUE(started.open(QIODevice::ReadOnly));
    EXPECT_EQ(started.readAll(), QByteArray("argument\n"));
    program.start(); // it does already
    program.end();
    EXPECT_EQ(program.text(), QStringLiteral("The sleeper is ending."));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !program.isAlive(); }, boundMs));
    EXPECT_EQ(program.state(), State::Ended);
    EXPECT_TRUE(program.mayBeStarted());
}

TEST_F(StartedProgramTest, WorksOnTheNamedComputer)
{
    write("echo \"$TARN_SIMULATOR_STATE\" > computer\n");
    StartedProgram program(kind, folder.path(), QStringLiteral("/some/machine.state"));
    program.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == State::Ended; }, boundMs));
    QFile named(folder.filePath(QStringLiteral("computer")));
    ASSERT_TRUE(named.open(QIODevice::ReadOnly));
    EXPECT_EQ(named.readAll(), QByteArray("/some/machine.state\n"));
}

TEST_F(StartedProgramTest, TellsHowItHasEnded)
{
    write("exit 3\n");
    StartedProgram program(kind, folder.path());
    program.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == State::Ended; }, boundMs));
    EXPECT_EQ(program.text(), QStringLiteral("The sleeper has ended with exit code 3."));

    write("kill -9 $$\n");
    program.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == State::Ended; }, boundMs));
    EXPECT_EQ(program.text(), QStringLiteral("The sleeper was killed or has crashed."));
}

TEST_F(StartedProgramTest, TellsWhyItCannotBeStarted)
{
    write("");
    QFile::remove(folder.filePath(QStringLiteral("sleeper")));
    QFile file(folder.filePath(QStringLiteral("sleeper")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/nowhere/at/all\n");
    file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    file.close();
    StartedProgram program(kind, folder.path());
    program.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == State::Ended; }, boundMs));
    EXPECT_TRUE(program.text().startsWith(QStringLiteral("The sleeper cannot be started: ")))
        << program.text().toStdString();
}

TEST_F(StartedProgramTest, LeavesOneThatRunsAlreadyAlone)
{
    const QString copy = folder.filePath(QStringLiteral("sleeper"));
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/sleep"), copy));
    QProcess other;
    other.start(copy, {QStringLiteral("100")});
    ASSERT_TRUE(other.waitForStarted());
    StartedProgram program(kind, folder.path());
    program.start();
    EXPECT_EQ(program.state(), State::Foreign);
    EXPECT_EQ(
        program.text(), QStringLiteral("The sleeper was running already and stays when this window closes."));
    program.end();
    EXPECT_EQ(other.state(), QProcess::Running);
    other.kill();
    ASSERT_TRUE(other.waitForFinished());
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == State::Ended; }, boundMs));
    EXPECT_EQ(program.text(), QStringLiteral("The sleeper that was running has ended."));
    program.start(); // `sleep` does not like the argument
    EXPECT_NE(program.state(), State::Foreign);
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == State::Ended; }, boundMs));
}

TEST_F(StartedProgramTest, IsGoneWithTheObject)
{
    write("exec sleep 100\n");
    qint64 process = 0;
    {
        StartedProgram program(kind, folder.path());
        program.start();
        process = program.processId();
        ASSERT_GT(process, 0);
    }
    EXPECT_FALSE(QFile::exists(QStringLiteral("/proc/%1").arg(process)));
}

TEST_F(StartedProgramTest, StartsNothingWithoutAFolderOrAProgram)
{
    for (const QString &place : {QString(), folder.path()}) {
        StartedProgram program(kind, place);
        EXPECT_FALSE(program.mayBeStarted());
        program.start();
        program.end();
        EXPECT_EQ(program.state(), State::None);
    }
}
