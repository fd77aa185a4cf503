#include "end_to_end/flasher_fixture.h"

using tarnTest::portName;

// The program behind the serial port.
class SerialLine : public tarnTest::FlasherFixture
{
protected:
    struct Outcome
    {
        int exitCode;
        QString err;
    };
    // One more of it in the same folder, which is expected to end by itself.
    [[nodiscard]] Outcome runAnother(const QStringList &arguments) const
    {
        QProcess another;
        another.setWorkingDirectory(folder.path());
        another.start(tarnTest::builtProgram(QStringLiteral("tarnserial")), arguments);
        if (!another.waitForFinished(10000)) {
            another.kill();
            another.waitForFinished(5000);
            return {-1, QString()};
        }
        return {another.exitCode(), QString::fromLocal8Bit(another.readAllStandardError())};
    }
};

TEST_F(SerialLine, PortGoesAwayWithItsServer)
{
    write(QStringLiteral("fw.bin"), firmware);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(stopPort(signal), 0) << signal;
        EXPECT_FALSE(hasPort()) << signal;
        EXPECT_TRUE(flash().err.contains("Failed to open port"));
        ASSERT_TRUE(startPort());
    }
    expectRepaired();
}

TEST_F(SerialLine, LeftoverPortIsReplacedAndAFileIsNot)
{
    EXPECT_EQ(stopPort(SIGKILL), -1);
    EXPECT_TRUE(hasPort());
    ASSERT_TRUE(startPort());
    EXPECT_EQ(stopPort(SIGTERM), 0);
    EXPECT_FALSE(hasPort());

    QFile file(inMcuFolder(portName));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const Outcome outcome = runAnother({});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.contains("cannot be named"));
    EXPECT_TRUE(file.exists());
}

TEST_F(SerialLine, AServedPortIsNotTakenOver)
{
    const QString roundabout = inMcuFolder(QStringLiteral("../MCU/") + portName);
    for (const QStringList &arguments : {QStringList(), QStringList(roundabout)}) {
        const Outcome outcome = runAnother(arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_TRUE(outcome.err.contains("another tarnserial serves that port")) << outcome.err.toStdString();
    }
    EXPECT_TRUE(hasPort());
    write(QStringLiteral("fw.bin"), firmware);
    expectRepaired();
}

TEST_F(SerialLine, ALinkThatIsNoPortStays)
{
    const QString link = folder.filePath(QStringLiteral("my port"));
    ASSERT_TRUE(QFile::link(stateFile(), link));
    const Outcome outcome = runAnother({link});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.contains("cannot be named")) << outcome.err.toStdString();
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), stateFile());
}

TEST_F(SerialLine, MakesNoMachine)
{
    const QString missing = folder.filePath(QStringLiteral("missing.state"));
    const QString link = folder.filePath(QStringLiteral("my port"));
    const Outcome outcome = runAnother({"--state", missing, link});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.contains("there is no simulated computer in " + missing))
        << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("tarnsim --state FILE reset"));
    EXPECT_FALSE(QFileInfo::exists(missing));
    EXPECT_FALSE(QFileInfo(link).isSymLink());
}

TEST_F(SerialLine, WrongUsageIsSaidAndHasACodeOfItsOwn)
{
    const std::pair<QStringList, const char *> wrong[] = {
        {{"one", "two"}, "\"two\" is a second name"},
        {{"--banana"}, "banana"},
        {{"--state"}, "state"},
        {{"--state="}, "--state needs the name of a file"},
    };
    for (const auto &[arguments, said] : wrong) {
        const Outcome outcome = runAnother(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << said;
        EXPECT_TRUE(outcome.err.contains(said)) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains("--help"));
    }
    EXPECT_FALSE(QFileInfo(folder.filePath(QStringLiteral("one"))).isSymLink());
    EXPECT_EQ(runAnother({"--help"}).exitCode, 0);
}

TEST_F(SerialLine, PortOfAnotherNameAndMachineIsServedAsWell)
{
    const QString link = folder.filePath(QStringLiteral("my port"));
    QProcess other;
    other.start(tarnTest::builtProgram(QStringLiteral("tarnserial")), {"--state", stateFile(), link});
    ASSERT_TRUE(tarnTest::waitUntil([&other] { return other.canReadLine(); }));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(QString::fromLocal8Bit(other.readLine()).startsWith(link + QStringLiteral(" is /dev/pts/")));
    other.terminate();
    EXPECT_TRUE(other.waitForFinished(5000));
    EXPECT_FALSE(QFileInfo::exists(link));
}
