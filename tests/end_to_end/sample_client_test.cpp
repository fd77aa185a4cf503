#include "device/ec_registers.h"
#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "end_to_end/watched_program.h"

#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;
using tarnTest::WatchedProgram;

namespace {

constexpr int sampleTimeoutMs = 60000;
constexpr int longerThanAnyPauseMs = 3000; // of a client that has not given way

// The sample of examples/python.
class SampleClient : public WatchedProgram
{
public:
    explicit SampleClient(const ServiceProcess &service)
        : WatchedProgram(service, QStringLiteral("python3"),
            {QStringLiteral(TARN_DOCS_FOLDER "/../examples/python/robust_client.py"), "--every", "1",
                "--limit", "3", "--alive", "3"})
    { }
};

// What Python says about lines that use parts of the sample; empty when all that they assert is true.
std::string complaintOf(const char *lines)
{
    QProcess python;
    python.setProcessChannelMode(QProcess::MergedChannels);
    const QByteArray beginning =
        "import sys\nsys.path.insert(0, sys.argv[1])\nsys.dont_write_bytecode = True\n";
    python.start(QStringLiteral("python3"),
        {"-c", QString::fromUtf8(beginning + lines), TARN_DOCS_FOLDER "/../examples/python"});
    if (!python.waitForFinished(sampleTimeoutMs))
        return "it does not end";
    const std::string output = python.readAll().toStdString();
    return python.exitCode() == 0 || !output.empty() ? output : "it fails without a word";
}

} // namespace

TEST(SampleClient, LivesThroughOtherClientsUpdateModeAndARestart)
{
    ServiceProcess service;
    SampleClient sample(service); // before the service is there
    ASSERT_TRUE(sample.runs());
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(sample.shows("connected disconnected"));
    ASSERT_TRUE(sample.shows("smart charging ON"));
    ASSERT_TRUE(sample.shows("attached disconnected"));
    ASSERT_TRUE(sample.shows("version 0.00"));
    service.attach(ACCESSORY_KVANE);
    ASSERT_TRUE(sample.shows("event changeAccessoryType k_vane"));
    ASSERT_TRUE(sample.shows("version 2.05"));

    ServiceClient other;
    ASSERT_TRUE(other.connectToService());
    other.leave();
    ASSERT_TRUE(sample.shows("lost: another client gets the service's messages"));
    ASSERT_TRUE(sample.shows("connected k_vane"));
    ASSERT_TRUE(sample.shows("version 2.05"));

    // Its answers may reach the sample, so the other one does not wait for them.
    ServiceClient updater;
    ASSERT_TRUE(updater.connectToService());
    updater.write(R"({"cmd":"requestEnterMcuUpdateMode"})");
    ASSERT_TRUE(sample.shows("busy getMcuVersion"));
    updater.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
    ASSERT_TRUE(sample.shows("version 2.05"));

    service.kill();
    ASSERT_TRUE(sample.shows("lost: the service has gone"));
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(sample.shows("connected k_vane"));
    ASSERT_TRUE(sample.shows("version 2.05"));
    EXPECT_EQ(service.stop(), 0);
}

TEST(SampleClient, LeavesTheServiceToAnotherProgramAfterThreeLosses)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    SampleClient sample(service);
    ASSERT_TRUE(sample.runs());
    constexpr int losses = 3;
    for (int loss = 1; loss <= losses; ++loss) {
        ASSERT_TRUE(sample.shows("version 0.00")) << loss;
        ServiceClient other;
        ASSERT_TRUE(other.connectToService());
        other.leave();
        ASSERT_TRUE(sample.shows("lost: another client gets the service's messages")) << loss;
    }
    ASSERT_TRUE(sample.shows("another program uses the service; Enter connects again"));

    const QString connectionLine = QStringLiteral("is connection!");
    const qsizetype connections = service.logCount(connectionLine);
    QThread::msleep(longerThanAnyPauseMs);
    EXPECT_EQ(service.logCount(connectionLine), connections);
    sample.type("\n");
    ASSERT_TRUE(sample.shows("connected disconnected"));
    EXPECT_EQ(service.stop(), 0);
}

TEST(SampleClient, TakesTheStreamApartByteByByteAndAllAtOnce)
{
    const char check[] = R"(
import json
from robust_client import take_objects
objects = [{"cmd": "a", "data": ""}, {"id": "}{", "x": {"y": {}}}, {"id": '\\"\\\\', "ü€": "ü€"}, {}]
stream = "".join(json.dumps(o, ensure_ascii=False, separators=(",", ":")) for o in objects).encode()
for size in (1, 2, 7, len(stream)):
    buffer, taken = bytearray(), []
    for at in range(0, len(stream), size):
        buffer += stream[at:at + size]
        taken += take_objects(buffer)
    assert taken == objects and not buffer, (size, taken, buffer)
)";
    EXPECT_EQ(complaintOf(check), "");
}

TEST(SampleClient, CountsLossesTogetherThatAreNotFarApart)
{
    const char check[] = R"(
from robust_client import Losses, FIRST_PAUSE, TAKEN_PAUSE
def pauses(*times):
    losses, seen = Losses(), []
    for time in times:
        losses.add(time)
        seen.append(losses.pause())
    return seen
assert pauses(10, 20, 30, 95) == [FIRST_PAUSE, FIRST_PAUSE, TAKEN_PAUSE, TAKEN_PAUSE]
assert pauses(0, 300, 600) == [FIRST_PAUSE, FIRST_PAUSE, TAKEN_PAUSE]
assert pauses(0, 301, 602, 903) == [FIRST_PAUSE] * 4
assert pauses(10, 20, 30, 331) == [FIRST_PAUSE, FIRST_PAUSE, TAKEN_PAUSE, FIRST_PAUSE]
)";
    EXPECT_EQ(complaintOf(check), "");
}
