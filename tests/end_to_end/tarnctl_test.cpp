#include "end_to_end/service_process.h"

#include "device/ec_registers.h"

#include <QDir>
#include <QProcess>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceProcess;

namespace {

struct Outcome
{
    int exitCode = -1;
    QString out;
    QString err;
};

Outcome tarnctl(const QStringList &arguments)
{
    QProcess process;
    process.start(tarnTest::builtProgram(QStringLiteral("tarnctl")), arguments);
    process.waitForFinished(60000);
    const auto text = [](const QByteArray &bytes) {
        return QString::fromUtf8(bytes).remove(QLatin1Char('\r'));
    };
    return {process.exitCode(), text(process.readAllStandardOutput()), text(process.readAllStandardError())};
}

} // namespace

TEST(Tarnctl, AsksAndSetsThroughARealService)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(service.waitForLog("now Accessory is dock"));

    EXPECT_EQ(tarnctl({"getAccessoryType"}).out, "dock\n");
    EXPECT_EQ(tarnctl({"setDockLedStatus", "on"}).exitCode, 0);
    EXPECT_EQ(tarnctl({"getDockLedStatus"}).out, "on\n");
    EXPECT_EQ(tarnctl({"--json", "getAccessoryCode"}).out,
        R"({"cmd":"getAccessoryCode","data":"1"})"
        "\n");
    EXPECT_EQ(tarnctl({"powerModeControl", "last"}).exitCode, 0);
    EXPECT_TRUE(service.waitForLog("app is closing now."));

    const Outcome forced = tarnctl({"--force", "setDockLedStatus", "blue"});
    EXPECT_EQ(forced.exitCode, 1);
    EXPECT_EQ(forced.out, "failed\n");
    const Outcome unanswered = tarnctl({"--force", "--timeout", "2", "noSuchCommand"});
    EXPECT_EQ(unanswered.exitCode, 4);
    EXPECT_FALSE(unanswered.err.isEmpty());
    EXPECT_EQ(service.stop(), 0);
}

TEST(Tarnctl, SaysWhatIsWrongWithoutAService)
{
    const ServiceProcess nobody; // its folder has no socket
    const Outcome outcome = tarnctl({"getMcuVersion"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(outcome.err.contains("./run"));
    EXPECT_EQ(tarnctl({"getMcuVersions"}).exitCode, 2);
    EXPECT_EQ(tarnctl({"setDockLedStatus", "blue"}).exitCode, 2);
}
