#include "device/ec_registers.h"
#include "end_to_end/running_tarnctl.h"
#include "end_to_end/service_client.h"
#include "end_to_end/test_system.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;
using tarnTest::ToolOutcome;

namespace {

// A service with a tarnctl beside it, as an installation has it.
class DiagnosedService : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // As the service has them.
        qputenv("HOME", QFile::encodeName(service.path(QString())));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(service.path(QString())));
        QDir().mkpath(service.downloads());
        ASSERT_TRUE(QFile::copy(tarnTest::builtProgram(QStringLiteral("tarnctl")), tool));
    }

    [[nodiscard]] ToolOutcome diagnose(const QStringList &options = {}) const
    {
        return tarnTest::RunningTarnctl(QStringList {"diagnose"} + options, tool).outcome();
    }
    // "good" and so on, for the first line about the subject.
    [[nodiscard]] static QString verdictOf(const ToolOutcome &outcome, const QString &subject)
    {
        for (const QString &line : outcome.out.split('\n')) {
            if (line.mid(9, 19) == subject.leftJustified(19))
                return line.section(' ', 0, 0);
        }
        return "(no line)";
    }

    tarnTest::ServiceProcess service;
    const QString tool = service.path("tarnctl" TARN_PROGRAM_SUFFIX);
};

} // namespace

TEST_F(DiagnosedService, IsSoundAndKeepsItsClient)
{
    ASSERT_TRUE(service.start());
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    const ToolOutcome outcome = diagnose();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    for (const char *subject : {"running", "pipe tarnPipe", "may connect", "version", "running EC tool",
             "running flasher", "port library", "GUI program", "flasher", "EC tool", "EC tool settings",
             "download folder", "saved profile", "saved colour", "log", "last warnings"})
        EXPECT_EQ(verdictOf(outcome, subject), "good") << subject << '\n' << outcome.out.toStdString();
    EXPECT_EQ(outcome.err, "");
    // Nobody else has connected, so the client still has the service.
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    EXPECT_EQ(service.logCount("is connection!"), 1);
    EXPECT_EQ(verdictOf(outcome, "answers"), "unknown");
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(DiagnosedService, IsAskedOnRequest)
{
    ASSERT_TRUE(service.start());
    const ToolOutcome outcome = diagnose({"--connect"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    EXPECT_EQ(verdictOf(outcome, "answers"), "good") << outcome.out.toStdString();
    EXPECT_EQ(verdictOf(outcome, "EC"), "good") << outcome.out.toStdString();
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(DiagnosedService, MayHaveAStuckEc)
{
    ASSERT_TRUE(service.start());
    service.breakDown("ibf-stuck");
    const ToolOutcome outcome = diagnose({"--connect"});
    EXPECT_EQ(outcome.exitCode, 1) << outcome.out.toStdString();
    EXPECT_EQ(verdictOf(outcome, "answers"), "good") << outcome.out.toStdString();
    EXPECT_EQ(verdictOf(outcome, "EC"), "bad") << outcome.out.toStdString();
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(DiagnosedService, MayHang)
{
    ASSERT_TRUE(service.start());
    tarnTest::suspend(service.process);
    const ToolOutcome unconnected = diagnose();
    const ToolOutcome connected = diagnose({"--connect", "--timeout", "2"});
    tarnTest::resume(service.process);
    EXPECT_EQ(unconnected.exitCode, 0) << unconnected.out.toStdString();
    EXPECT_EQ(verdictOf(unconnected, "running"), "good");
    EXPECT_EQ(connected.exitCode, 1) << connected.out.toStdString();
    EXPECT_EQ(verdictOf(connected, "answers"), "bad");
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(DiagnosedService, MayHaveEndedFatally)
{
    ASSERT_TRUE(QFile::remove(service.path("function/inpoutx64.dll")));
    ASSERT_TRUE(service.launch({"-exec"}));
    ASSERT_TRUE(service.waitForEnd());
    const ToolOutcome outcome = diagnose();
    EXPECT_EQ(outcome.exitCode, 1);
    for (const char *subject : {"running", "pipe tarnPipe", "port library", "last warnings"})
        EXPECT_EQ(verdictOf(outcome, subject), "bad") << subject << '\n' << outcome.out.toStdString();
    EXPECT_TRUE(outcome.out.contains("Cannot load library\n"));
}

TEST_F(DiagnosedService, FitsIntoAFile)
{
    service.write("graphicsRGB_config.ini", "[General]\ngraphicsColor=4\n");
    ASSERT_TRUE(service.start());
    EXPECT_EQ(service.stop(), 0);
    service.write("report.txt", "== Tarn Service, of yesterday");
    const ToolOutcome outcome = diagnose({"--output", service.path("report.txt")});
    EXPECT_EQ(outcome.exitCode, 1); // it does not run
    const QString report = QString::fromUtf8(service.read("report.txt"));
    EXPECT_TRUE(report.contains(outcome.out)) << report.toStdString();
    EXPECT_TRUE(report.contains("\ngraphicsColor=4\n"));
    EXPECT_TRUE(report.contains(" TarnService::start\n"));
    EXPECT_TRUE(report.contains(" service is Finish!\n"));
    EXPECT_FALSE(report.contains("of yesterday"));

    for (const char *place : {"no such folder/report.txt", "function", "graphicsRGB_config.ini"}) {
        const ToolOutcome refused = diagnose({"--output", service.path(place)});
        EXPECT_EQ(refused.exitCode, 2) << place;
        EXPECT_TRUE(refused.err.contains("The report cannot be written to ")) << refused.err.toStdString();
    }
    EXPECT_EQ(service.read("graphicsRGB_config.ini"), "[General]\ngraphicsColor=4\n");
    EXPECT_EQ(diagnose({"--json"}).exitCode, 2);
}

TEST_F(DiagnosedService, GivesItsSerialNumberOnRequestOnly)
{
    ASSERT_TRUE(service.start());
    service.attach(ACCESSORY_KVANE);
    ASSERT_TRUE(service.waitForLog("now Accessory is k_vane"));
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    const QString number = client.answer("getTarnKvaneSnCode");
    ASSERT_EQ(number.size(), 14) << number.toStdString();
    const QRegularExpression byteOfIt("sn code \\d+ from xdata successed with: +\\d");
    const auto report = [this](const QStringList &options) {
        static_cast<void>(diagnose(QStringList {"--output", service.path("report.txt")} + options));
        return QString::fromUtf8(service.read("report.txt"));
    };
    const QString usual = report({});
    EXPECT_FALSE(usual.contains(number));
    EXPECT_FALSE(usual.contains(byteOfIt));
    EXPECT_TRUE(usual.contains("sn code"));
    const QString whole = report({"--serial-numbers"});
    EXPECT_TRUE(whole.contains(number));
    EXPECT_TRUE(whole.contains(byteOfIt));
    EXPECT_EQ(service.stop(), 0);
}
