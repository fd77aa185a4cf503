#include "simulator/replay/replay_steps.h"

#include "support/run_folder.h"
#include "unit/simulator/replay/replay_session.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>

#include <mutex>

using tarnSimulator::Device;
using tarnSimulator::DeviceKind;
using tarnSimulator::DevicePlace;
using tarnSimulator::ReplaySteps;
using tarnSimulatorTest::RecordingBuilder;

namespace {

// Where the service would be: takes what is written to its pipe.
class PipeEnd : public QThread
{
public:
    explicit PipeEnd(unsigned long delayMs = 0)
        : delay(delayMs)
    { }
    ~PipeEnd() override
    {
        quit();
        wait();
    }
    [[nodiscard]] QByteArray taken()
    {
        const std::lock_guard lock(mutex);
        return bytes;
    }

private:
    void run() override
    {
        msleep(delay);
        QLocalServer server;
        QObject::connect(&server, &QLocalServer::newConnection, &server, [&] {
            QLocalSocket *socket = server.nextPendingConnection();
            QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                const std::lock_guard lock(mutex);
                bytes += socket->readAll();
                socket->write("an answer");
            });
        });
        ASSERT_TRUE(server.listen(QStringLiteral("tarnPipe")));
        exec();
    }

    const unsigned long delay;
    std::mutex mutex;
    QByteArray bytes;
};

} // namespace

class ReplayedSteps : public tarnSimulatorTest::ReplaySession
{
protected:
    tarnTest::RunFolder runFolder; // with the pipe's socket
};

TEST_F(ReplayedSteps, AreDoneAtTheEndOfTheirAccess)
{
    steps("after 0 answer 3\nafter 1 answer 4\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).in(0x6C, 2)), 0) << errors.toStdString();
    load();
    EXPECT_NE(computer->desktop().answer(), 3);
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_EQ(computer->desktop().answer(), 4);
    EXPECT_EQ(state().steps, 2U);
    EXPECT_EQ(ports->read(0x6C), 2);
    EXPECT_TRUE(state().isComplete());
}

TEST_F(ReplayedSteps, HaveToBeDoneAll)
{
    steps("after 0 answer 3\nafter 9 answer 4\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_FALSE(state().isComplete());
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(
        said("1 of 1 port accesses, 1 of 2 steps, not complete: the next step is \"after 9 answer 4\""));
}

TEST_F(ReplayedSteps, AskOnTheServicesPipeBeforeTheNextAccess)
{
    PipeEnd pipe;
    pipe.start();
    steps("after 1 request {\"command\":\"setDockLedStatus\",\"data\":\"on\"}\n"
          "after 2 request {\"command\":\"getDockLedStatus\"}\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).in(0x6C, 2).in(0x6C, 3)), 0)
        << errors.toStdString();
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_EQ(pipe.taken(), R"({"cmd":"setDockLedStatus","data":"on","id":"replay-1"})");
    EXPECT_EQ(ports->read(0x6C), 2);
    EXPECT_TRUE(pipe.taken().endsWith(R"({"cmd":"getDockLedStatus","id":"replay-2"})"));
    EXPECT_EQ(ports->read(0x6C), 3);
    EXPECT_TRUE(state().isComplete());
}

TEST_F(ReplayedSteps, WaitForAServiceThatHasJustStarted)
{
    steps("after 0 request {\"command\":\"getDockLedStatus\"}\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    PipeEnd pipe(300);
    pipe.start();
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_FALSE(pipe.taken().isEmpty());
}

TEST_F(ReplayedSteps, SayWhenNobodyCanBeAsked)
{
    steps("after 1 request {\"command\":\"getDockLedStatus\"}\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    ReplaySteps alone(machine->state(), machine->path(), std::chrono::milliseconds(20));
    EXPECT_TRUE(alone.doUntil(0));
    EXPECT_FALSE(alone.doUntil(1));
    EXPECT_EQ(alone.failedStep(), "after 1 request {\"cmd\":\"getDockLedStatus\",\"id\":\"replay-1\"}");
    EXPECT_EQ(state().steps, 0U);
}

TEST_F(ReplayedSteps, GiveTheHostTheDevicesBesideTheRecordingAndNoOthers)
{
    steps(R"(after 0 device {"name":"rtx","kind":"display","place":"box","started":false,"problem":22,)"
          R"("description":"A card","hardwareId":"PCI\\VEN_1","instanceId":"PCI\\VEN_1\\4"})"
          "\nafter 1 device {\"name\":\"rtx\",\"kind\":\"display\",\"started\":true,\"problem\":0,"
          "\"description\":\"A card\",\"hardwareId\":\"\",\"instanceId\":\"\"}\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0) << errors.toStdString();
    EXPECT_TRUE(computer->devices().allSlots().empty());
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    ASSERT_EQ(computer->devices().allSlots().size(), 1U);
    const Device device = computer->devices().device(*computer->devices().find("rtx"));
    EXPECT_EQ(device.kind, DeviceKind::Display);
    EXPECT_EQ(device.place, DevicePlace::Computer);
    EXPECT_TRUE(device.started);
    EXPECT_EQ(device.problem, 0U);
    EXPECT_EQ(device.description, "A card");
}

TEST_F(ReplayedSteps, PutBackWhatTheServiceHadSaved)
{
    runFolder.write("graphicsRGB_config.ini", "an older one");
    steps("after 0 saved {\"file\":\"powermodeconfig.xml\",\"content\":\"NAD/\"}\n"
          "after 0 saved {\"file\":\"graphicsRGB_config.ini\",\"content\":\"\"}\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0) << errors.toStdString();
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_EQ(runFolder.read("powermodeconfig.xml"), QByteArray("4\0\xFF", 3));
    EXPECT_FALSE(QFile::exists("graphicsRGB_config.ini"));
    EXPECT_TRUE(state().isComplete());
}

TEST_F(ReplayedSteps, KeepADeviceOnALine)
{
    Device device;
    device.name = "rtx";
    device.kind = DeviceKind::Audio;
    device.place = DevicePlace::Box;
    device.started = false;
    device.problem = 43;
    device.description = "A card";
    device.hardwareId = "PCI\\VEN_1";
    const std::string line = tarnSimulator::deviceLine(device);
    const auto back = tarnSimulator::deviceOfLine(line);
    ASSERT_TRUE(back);
    EXPECT_EQ(tarnSimulator::deviceLine(*back), line);
    EXPECT_EQ(back->hardwareId, device.hardwareId);
    for (const char *wrong : {"", "rtx", "\t1\t1\t0\t43\tA\tB\tC", "rtx\t7\t1\t0\t43\tA\tB\tC",
             "rtx\t1\t9\t0\t43\tA\tB\tC", "rtx\t1\t1\t0\tx\tA\tB\tC", "rtx\t1\t1\t0\t43\tA\tB\tC\tD"})
        EXPECT_FALSE(tarnSimulator::deviceOfLine(wrong)) << wrong;
    EXPECT_FALSE(tarnSimulator::deviceOfLine("rtx\t1\t1\t0\t43\t" + std::string(128, 'x') + "\tB\tC"));
}
