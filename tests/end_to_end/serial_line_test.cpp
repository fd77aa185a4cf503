#include "end_to_end/flasher_fixture.h"

using tarnTest::portName;

// The program behind the serial port.
class SerialLine : public tarnTest::FlasherFixture
{ };

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
    port.start(tarnTest::builtProgram(QStringLiteral("tarnserial")), QStringList());
    ASSERT_TRUE(port.waitForFinished(10000));
    EXPECT_EQ(port.exitCode(), 1);
    EXPECT_TRUE(port.readAllStandardError().contains("cannot be named"));
    EXPECT_TRUE(file.exists());
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
