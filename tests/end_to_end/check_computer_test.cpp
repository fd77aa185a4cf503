#include "device/ec_registers.h"
#include "end_to_end/running_tarnctl.h"
#include "end_to_end/service_process.h"
#include "end_to_end/watched_program.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceProcess;
using tarnTest::WatchedProgram;

namespace {

// What a check has left behind.
struct CheckOutcome
{
    int exitCode = -1;
    QString report;
    QStringList requests; // lines
};

// A service that records, with a tarnctl beside it, as an installation has it.
class CheckedComputer : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QFile::copy(tarnTest::builtProgram(QStringLiteral("tarnctl")), tool));
        if (isRecorded)
            service.write("function/ec_recording.on", {});
        ASSERT_TRUE(service.start());
    }
    void TearDown() override { EXPECT_EQ(service.stop(), 0); }

    void attach(std::uint8_t code, const char *name)
    {
        service.attach(code);
        ASSERT_TRUE(service.waitForLog(QStringLiteral("now Accessory is ") + name));
    }
    [[nodiscard]] QStringList files(const QString &pattern) const
    {
        return QDir(service.path("function")).entryList({pattern}, QDir::Files, QDir::Time);
    }
    // Takes away what the last check has left.
    [[nodiscard]] CheckOutcome takeOutcome(std::optional<int> exitCode)
    {
        const QStringList reports = files("*.report.txt");
        const QStringList requests = files("*.requests");
        EXPECT_EQ(reports.size(), 1);
        EXPECT_EQ(requests.size(), 1);
        if (reports.isEmpty() || requests.isEmpty())
            return {};
        CheckOutcome outcome {exitCode.value_or(-1),
            QString::fromUtf8(service.read("function/" + reports.first())).remove('\r'),
            QString::fromUtf8(service.read("function/" + requests.first())).split('\n', Qt::SkipEmptyParts)};
        QFile::remove(service.path("function/" + reports.first()));
        QFile::remove(service.path("function/" + requests.first()));
        return outcome;
    }
    // With a yes to what changes, and nothing seen by eyes.
    [[nodiscard]] CheckOutcome check(const QStringList &steps, const QByteArray &typed = "\ny\ns\ns\ns\n")
    {
        WatchedProgram program(service, tool, QStringList {"check-computer"} + steps);
        program.type(typed);
        return takeOutcome(program.end());
    }

    bool isRecorded = true;
    ServiceProcess service;
    const QString tool = service.path("tarnctl" TARN_PROGRAM_SUFFIX);
};

// What stands in the report of a step.
[[nodiscard]] QString partAbout(const QString &report, const QString &step)
{
    const qsizetype begin = report.indexOf("] " + step + ": ");
    return begin < 0 ? QString() : report.mid(begin, report.indexOf("  => ", begin) + 30 - begin);
}

// Each request is a JSON object, and none comes before the one above it.
void expectInOrder(const QStringList &requests)
{
    qulonglong last = 0;
    for (const QString &line : requests) {
        const qulonglong after = line.section(' ', 1, 1).toULongLong();
        EXPECT_GE(after, last) << line.toStdString();
        last = after;
        if (line.section(' ', 2, 2) != "request")
            continue;
        const QJsonObject request = QJsonDocument::fromJson(line.section(' ', 3).toUtf8()).object();
        EXPECT_FALSE(request.value("command").toString().isEmpty()) << line.toStdString();
    }
    EXPECT_GT(last, 0u);
}

[[nodiscard]] bool hasRequest(const QStringList &requests, const QString &command, const QString &data)
{
    return std::any_of(requests.begin(), requests.end(), [&](const QString &line) {
        const QJsonObject request = QJsonDocument::fromJson(line.section(' ', 3).toUtf8()).object();
        return request.value("command").toString() == command && request.value("data").toString() == data;
    });
}

// A fault, the steps that meet it, and what the report says then.
struct MetFault
{
    const char *name;
    std::optional<int> value;
    QStringList steps;
    QString said;
};

} // namespace

TEST_F(CheckedComputer, IsSoundWithADock)
{
    attach(ACCESSORY_DOCK, "dock");
    service.computer().setDockLight({1, 0, 0});
    service.computer().setSmartCharging(false);
    // All but the last part.
    WatchedProgram program(service, tool, {"check-computer"});
    program.type("\ny\ns\ns\nn\n");
    const CheckOutcome outcome = takeOutcome(program.end());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.report.toStdString();
    EXPECT_TRUE(outcome.report.contains("\n  0 NOT as expected\n  0 NO ANSWER\n"));
    for (const char *step : {"versions", "battery", "dock-light", "set-dock-light", "set-power-mode",
             "set-smart-charging", "power-profiles"})
        EXPECT_TRUE(partAbout(outcome.report, step).contains("  => as expected"))
            << step << '\n'
            << outcome.report.toStdString();
    EXPECT_TRUE(partAbout(outcome.report, "set-kvane-light").contains("  => skipped"));
    expectInOrder(outcome.requests);
    EXPECT_TRUE(hasRequest(outcome.requests, "powerModeControl", "last"));
    // As it was before.
    EXPECT_EQ(service.computer().dockLight().red, 1);
    EXPECT_EQ(service.computer().peekEeprom(EEP_SMART_CHARGING), SMART_CHARGING_OFF);
    EXPECT_EQ(service.computer().peek(EC_TARN_POWER_MODE), TARN_POWER_MODE_BALANCE);
}

TEST_F(CheckedComputer, IsSoundWithAGraphicsBox)
{
    attach(ACCESSORY_GRAPHICS, "graphics");
    ASSERT_TRUE(service.waitForLog("GraphicsActive_log: Successed to active graphics."));
    const CheckOutcome outcome = check({"accessory-code", "graphics-light", "set-graphics-light"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.report.toStdString();
    EXPECT_TRUE(outcome.report.contains("\n  3 as expected\n  0 NOT as expected\n"));
    expectInOrder(outcome.requests);
}

TEST_F(CheckedComputer, IsSoundWithAKvaneAndKeepsItsSerialNumber)
{
    attach(ACCESSORY_KVANE, "k_vane");
    service.computer().setKvaneLed(77);
    const QStringList steps {"kvane-serial-number", "kvane-battery", "kvane-charging", "set-kvane-light"};
    const CheckOutcome outcome = check(steps);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.report.toStdString();
    EXPECT_TRUE(outcome.report.contains("\n  4 as expected\n  0 NOT as expected\n"));
    EXPECT_TRUE(partAbout(outcome.report, "kvane-serial-number").contains("came:     <serial number>, "));
    EXPECT_EQ(service.computer().kvaneLed(), 77);
    const CheckOutcome open = check({"--serial-numbers", "kvane-serial-number"});
    EXPECT_FALSE(open.report.contains("<serial number>"));
    EXPECT_EQ(open.exitCode, 0);
}

TEST_F(CheckedComputer, TellsWhatHandsDo)
{
    service.computer().desktop().setAnswer(1);
    WatchedProgram program(service, tool,
        {"check-computer", "plug-dock", "unplug-dock", "plug-graphics", "press-gpu-key", "unplug-graphics",
            "plug-kvane", "unplug-kvane"});
    program.type("\ny\n");
    ASSERT_TRUE(program.shows("[1/7] plug-dock: plugging in the dock"));
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(program.shows("[2/7] unplug-dock: unplugging the dock"));
    service.computer().detach();
    ASSERT_TRUE(program.shows("[3/7] plug-graphics: plugging in the graphics box"));
    service.attach(ACCESSORY_GRAPHICS);
    ASSERT_TRUE(program.shows("[4/7] press-gpu-key: the key of the graphics box"));
    ASSERT_TRUE(service.computer().pressGpuKey());
    ASSERT_TRUE(program.shows("[5/7] unplug-graphics: unplugging the graphics box"));
    service.computer().detach();
    ASSERT_TRUE(program.shows("[6/7] plug-kvane: plugging in the KVane"));
    service.attach(ACCESSORY_KVANE);
    ASSERT_TRUE(program.shows("[7/7] unplug-kvane: unplugging the KVane"));
    program.type("s\n");
    const CheckOutcome outcome = takeOutcome(program.end());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.report.toStdString();
    EXPECT_TRUE(
        outcome.report.contains("\n  6 as expected\n  0 NOT as expected\n  0 NO ANSWER\n  1 skipped\n"))
        << outcome.report.toStdString();
    EXPECT_TRUE(outcome.report.contains("came:     changeAccessoryType dock, after "));
    EXPECT_TRUE(std::any_of(outcome.requests.begin(), outcome.requests.end(),
        [](const QString &line) { return line.endsWith(" answer 1"); }));
    expectInOrder(outcome.requests);
}

class CheckedFaultyComputer : public CheckedComputer
{
protected:
    // The fault has to show in it.
    QString reportOf(const MetFault &fault)
    {
        service.breakDown(fault.name, fault.value);
        const CheckOutcome outcome = check(fault.steps);
        service.repair();
        EXPECT_EQ(outcome.exitCode, 1) << fault.name << '\n' << outcome.report.toStdString();
        EXPECT_TRUE(partAbout(outcome.report, fault.steps.first()).contains(fault.said))
            << fault.name << '\n'
            << outcome.report.toStdString();
        return outcome.report;
    }
};

TEST_F(CheckedFaultyComputer, ShowsThoseOfTheMailboxes)
{
    attach(ACCESSORY_DOCK, "dock");
    const std::vector<MetFault> faults {
        {"mailbox-stuck", {}, {"dock-light"}, "until it is 0. (20 times)"},
        {"eeprom-busy", {}, {"smart-charging"}, "came:     failed, "},
        {"eeprom-error", {}, {"smart-charging"}, "came:     failed, "},
        {"readback-offset", {}, {"power-profiles"}, "failed when check again."},
        {"fail-write", EC_TARN_POWER_MODE, {"set-power-mode"}, "came:     failed, "},
    };
    for (const MetFault &fault : faults) {
        const QString report = reportOf(fault);
        EXPECT_TRUE(report.contains("  => NOT as expected")) << fault.name;
    }
}

TEST_F(CheckedFaultyComputer, ShowsThoseOfSingleAccesses)
{
    const std::vector<MetFault> faults {
        {"fail-register", EC_TARN_POWER_MODE, {"power-mode"}, "came:     hide, "},
        {"fail-read", EC_TARN_POWER_MODE, {"power-mode"}, "came:     hide, "},
        {"fail-after", 0, {"power-mode"}, "ec reader not normal, begin to reload dll."},
        {"slow", 1000, {"power-mode"}, "This is late"},
    };
    for (const MetFault &fault : faults)
        reportOf(fault);
}

class CheckedStuckComputer : public CheckedComputer, public ::testing::WithParamInterface<const char *>
{ };

TEST_P(CheckedStuckComputer, ShowsIt)
{
    service.breakDown(GetParam());
    const CheckOutcome outcome = check({"--timeout", "12", "power-mode"});
    service.repair();
    EXPECT_EQ(outcome.exitCode, 1) << outcome.report.toStdString();
    const QString part = partAbout(outcome.report, "power-mode");
    EXPECT_TRUE(part.contains("This is late") || part.contains("came:     no answer."))
        << outcome.report.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Ports, CheckedStuckComputer, testing::Values("ibf-stuck", "obf-stuck", "no-answer"));

class UnrecordedComputer : public CheckedComputer
{
protected:
    UnrecordedComputer() { isRecorded = false; }
};

TEST_F(UnrecordedComputer, IsCheckedOnRequestOnly)
{
    WatchedProgram refused(service, tool, {"check-computer"});
    EXPECT_EQ(refused.end(), 2);
    EXPECT_TRUE(QString::fromUtf8(service.read("watched_program.out")).contains("tarnctl record on"));
    WatchedProgram allowed(service, tool, {"check-computer", "--without-recording", "accessory"});
    allowed.type("\n");
    EXPECT_EQ(allowed.end(), 0);
    EXPECT_EQ(files("*.report.txt").size(), 1);
    EXPECT_TRUE(files("*.requests").isEmpty());
}

// The switch counts at the next start.
TEST_F(UnrecordedComputer, IsRecordedAfterARestart)
{
    EXPECT_EQ(tarnTest::RunningTarnctl({"record", "on"}, tool).outcome().exitCode, 0);
    EXPECT_EQ(service.stop(), 0);
    EXPECT_TRUE(files("*.recording").isEmpty());
    ASSERT_TRUE(service.start());
    EXPECT_EQ(check({"battery"}).exitCode, 0);
    EXPECT_EQ(files("*.recording").size(), 1);
    const tarnTest::ToolOutcome off = tarnTest::RunningTarnctl({"record", "off"}, tool).outcome();
    EXPECT_TRUE(off.out.contains("A recording that runs goes on until the service is restarted"))
        << off.out.toStdString();
}
