#include "end_to_end/running_tarnctl.h"
#include "end_to_end/service_process.h"

#include "device/ec_registers.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::RunningTarnctl;
using tarnTest::ServiceProcess;
using tarnTest::tarnctl;
using tarnTest::ToolOutcome;

namespace {

// A service whose download folder is also that of tarnctl, and a firmware file.
class TarnctlUpdate : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // As the service has them.
        qputenv("HOME", QFile::encodeName(service.path(QString())));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(service.path(QString())));
        service.write("fw.bin", "a firmware");
        ASSERT_TRUE(service.start());
    }

    [[nodiscard]] QStringList update(const char *verb, const QStringList &options = {}) const
    {
        return QStringList {verb, service.path("fw.bin")} + options;
    }
    [[nodiscard]] bool hasDownload() const
    {
        return QFile::exists(QDir(service.downloads()).filePath("fw.bin"));
    }

    ServiceProcess service;
};

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

    const ToolOutcome forced = tarnctl({"--force", "setDockLedStatus", "blue"});
    EXPECT_EQ(forced.exitCode, 1);
    EXPECT_EQ(forced.out, "failed\n");
    const ToolOutcome unanswered = tarnctl({"--force", "--timeout", "2", "noSuchCommand"});
    EXPECT_EQ(unanswered.exitCode, 4);
    EXPECT_FALSE(unanswered.err.isEmpty());
    EXPECT_EQ(service.stop(), 0);
}

TEST(Tarnctl, SaysWhatIsWrongWithoutAService)
{
    const ServiceProcess unstarted; // its folder has no socket
    const ToolOutcome outcome = tarnctl({"getMcuVersion"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(outcome.err.contains("./run"));
    EXPECT_EQ(tarnctl({"getMcuVersions"}).exitCode, 2);
    EXPECT_EQ(tarnctl({"setDockLedStatus", "blue"}).exitCode, 2);
}

// The KVane comes while tarnctl waits for it, and there is no flasher: three failures, between which the MCU
// is switched to its boot loader and back.
TEST_F(TarnctlUpdate, OfAnMcuThatFailedLateIsNotToldUntouched)
{
    const QString flasher = service.path("function/MCU/stm32flash.exe");
    ASSERT_TRUE(QFile::rename(flasher, flasher + ".away"));
    RunningTarnctl running(update("update-mcu"));
    ASSERT_TRUE(service.waitForLog("\"getAccessoryType\""));
    service.attach(ACCESSORY_KVANE);
    const ToolOutcome outcome = running.outcome();
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(service.log().contains("mcuUpdateProcess failed 3 times."));
    EXPECT_TRUE(outcome.err.contains("The MCU's firmware may be incomplete now."))
        << outcome.err.toStdString();
    EXPECT_FALSE(outcome.err.contains("before it touched the MCU"));
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(TarnctlUpdate, OfAnMcuWithoutAKVaneIsToldUntouched)
{
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(service.waitForLog("now Accessory is dock"));
    const ToolOutcome asked = tarnctl(update("update-mcu", {"--timeout", "5"}));
    EXPECT_EQ(asked.exitCode, 1);
    EXPECT_TRUE(asked.err.contains("the service sees \"dock\". Nothing has been touched."))
        << asked.err.toStdString();
    EXPECT_FALSE(service.log().contains("requestMcuUpdate"));

    const ToolOutcome forced = tarnctl(update("update-mcu", {"--force"}));
    EXPECT_EQ(forced.exitCode, 1);
    EXPECT_TRUE(service.log().contains("MCU and base handshake failed!"));
    EXPECT_TRUE(forced.err.contains("refused the update before it touched the MCU"))
        << forced.err.toStdString();
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(TarnctlUpdate, OfTheEcThatIsRefusedReservesNothing)
{
    ASSERT_TRUE(QFile::remove(service.path("function/EC/uiset.ini")));
    const ToolOutcome outcome = tarnctl(update("update-ec"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.contains("this update has flashed nothing.")) << outcome.err.toStdString();
    EXPECT_FALSE(hasDownload());
    EXPECT_EQ(tarnctl({"getHardwareVersion"}).exitCode, 0);
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(TarnctlUpdate, OfTheEcReservesItForTheNextOne)
{
    const ToolOutcome ec = tarnctl(update("update-ec"));
    EXPECT_EQ(ec.exitCode, 0);
    EXPECT_TRUE(ec.out.startsWith("The service is done with the EC tool.")) << ec.err.toStdString();
    EXPECT_TRUE(service.log().contains("ecUpdate Leave |"));
    EXPECT_FALSE(service.log().contains("requestStartEcUpdate"));

    service.attach(ACCESSORY_KVANE); // which the service cannot see
    const ToolOutcome mcu = tarnctl(update("update-mcu", {"--timeout", "2"}));
    EXPECT_EQ(mcu.exitCode, 4);
    EXPECT_TRUE(
        mcu.err.contains("No answer to getMcuVersion within 2 s.\nFirst see whether the EC is reserved"))
        << mcu.err.toStdString();
    EXPECT_TRUE(mcu.err.contains("\nNothing has been touched.\n"));
    EXPECT_FALSE(hasDownload());
    EXPECT_EQ(service.stop(), 0);
}
