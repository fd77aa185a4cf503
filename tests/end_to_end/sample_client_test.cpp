#include "device/ec_registers.h"
#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "support/pipe_peer.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;

namespace {

constexpr int sampleTimeoutMs = 60000;
constexpr int sampleEndMs = 5000;

// The sample of docs/examples as a program of its own, and what it has shown since the last look.
class SampleClient
{
public:
    explicit SampleClient(const ServiceProcess &service)
        : output(service.path(QStringLiteral("sample.out")))
    {
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.setStandardOutputFile(output);
        program.start(QStringLiteral("python3"),
            {QStringLiteral(TARN_DOCS_FOLDER "/examples/robust_client.py"), "--every", "1", "--limit", "3",
                "--alive", "3"});
    }

    ~SampleClient()
    {
        program.kill();
        program.waitForFinished(sampleEndMs);
    }

    SampleClient(const SampleClient &) = delete;
    SampleClient &operator=(const SampleClient &) = delete;

    [[nodiscard]] bool runs() { return program.waitForStarted(); }

    // The line comes after those that were waited for before.
    [[nodiscard]] bool shows(const QString &line)
    {
        const bool shown = tarnTest::waitUntil(
            [&] {
                const auto at = lines().indexOf(line, seen);
                if (at < 0)
                    return false;
                seen = at + 1;
                return true;
            },
            sampleTimeoutMs);
        if (!shown) {
            ADD_FAILURE() << line.toStdString() << " does not come; all:\n"
                          << lines().join('\n').toStdString();
        }
        return shown;
    }

private:
    [[nodiscard]] QStringList lines() const
    {
        QFile file(output);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n') : QStringList();
    }

    QString output;
    QProcess program;
    qsizetype seen = 0;
};

} // namespace

TEST(SampleClient, LivesThroughOtherClientsUpdateModeAndARestart)
{
    ServiceProcess service;
    SampleClient sample(service); // before the service is there
    ASSERT_TRUE(sample.runs());
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(sample.shows("connected disconnected"));
    ASSERT_TRUE(sample.shows("smart charging ON"));
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

TEST(SampleClient, TakesTheStreamApartByteByByteAndAllAtOnce)
{
    const char check[] = R"(
import json, sys
sys.path.insert(0, sys.argv[1])
sys.dont_write_bytecode = True
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
    QProcess python;
    python.setProcessChannelMode(QProcess::MergedChannels);
    python.start(QStringLiteral("python3"), {"-c", check, TARN_DOCS_FOLDER "/examples"});
    ASSERT_TRUE(python.waitForFinished(sampleTimeoutMs));
    EXPECT_EQ(python.exitCode(), 0) << python.readAll().toStdString();
}
