#include "end_to_end/running_tarnctl.h"
#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"

#include "device/ec_registers.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;
using tarnTest::ToolOutcome;

namespace {

// A service whose EC is recorded, because the switch file is there when it starts.
class RecordedService : public ::testing::Test
{
protected:
    void begin()
    {
        service.write("function/ec_recording.on", {});
        ASSERT_TRUE(service.start()) << service.log().toStdString();
        ASSERT_TRUE(client.connectToService());
    }
    // Plugs a dock in and out, with requests about it and others.
    void useEc()
    {
        service.attach(ACCESSORY_DOCK);
        EXPECT_TRUE(client.waitForNotification("changeAccessoryType", "dock"));
        EXPECT_EQ(client.answer("setDockLedStatus", "off"), "successed");
        EXPECT_EQ(client.answer("getDockLedStatus"), "off");
        EXPECT_EQ(client.answer("powerModeControl", "first"), "1");
        EXPECT_EQ(client.answer("setSmartChargingStatus", "OFF"), "successed");
        service.computer().detach();
        EXPECT_TRUE(client.waitForNotification("changeAccessoryType", "disconnected"));
    }
    [[nodiscard]] QStringList recordings() const
    {
        return QDir(service.path("function")).entryList({"ec-*.recording"}, QDir::Files);
    }
    [[nodiscard]] ToolOutcome tarnsim(const QStringList &arguments) const
    {
        return tarnTest::RunningTarnctl(arguments, tarnTest::builtProgram("tarnsim")).outcome();
    }
    [[nodiscard]] QString file() const { return service.path("function/" + recordings().value(0)); }

    ServiceProcess service;
    ServiceClient client;
};

} // namespace

TEST_F(RecordedService, IsShownAndAnswersAsTheModel)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    useEc();
    EXPECT_EQ(service.stop(), 0);
    ASSERT_EQ(recordings().size(), 1);

    const ToolOutcome shown = tarnsim({"recording", file()});
    EXPECT_EQ(shown.exitCode, 0) << shown.err.toStdString();
    EXPECT_TRUE(shown.out.contains("read   0x06A6 ACCESSORY_CODE = 0x01 (1)"));
    EXPECT_TRUE(shown.out.contains("write  0x04A7 EC_POWERMODE_PL_CTRL = 0x01 (1)"));
    EXPECT_FALSE(shown.out.contains("broken"));
    EXPECT_FALSE(shown.out.contains("cut off"));

    const ToolOutcome summary = tarnsim({"recording", file(), "--summary"});
    EXPECT_EQ(summary.exitCode, 0) << summary.err.toStdString();
    EXPECT_TRUE(summary.out.contains("0x06A0 MCU_LINK_STATUS: "));
    EXPECT_LT(summary.out.size(), shown.out.size());

    const ToolOutcome compared = tarnsim({"compare", file()});
    EXPECT_EQ(compared.exitCode, 0) << compared.out.toStdString() << compared.err.toStdString();
    EXPECT_TRUE(compared.out.contains(" answers compared"));
    EXPECT_FALSE(compared.out.contains("another measurement")) << compared.out.toStdString();
    const bool isSlowOne = qEnvironmentVariableIsSet("TARN_ACCEPTANCE_POLLS");
    EXPECT_TRUE(isSlowOne || !compared.out.contains("other timing")) << compared.out.toStdString();
}

TEST_F(RecordedService, IsFoundWithItsFault)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    useEc();
    service.breakDown("eeprom-error");
    EXPECT_EQ(client.answer("setSmartChargingStatus", "ON"), "failed");
    EXPECT_EQ(service.stop(), 0);
    const ToolOutcome compared = tarnsim({"compare", file()});
    EXPECT_EQ(compared.exitCode, 1);
    EXPECT_TRUE(compared.out.contains("0x0640 EEP_STATUS is 0x02 (2), expected 0x01 (1)"))
        << compared.out.toStdString();
}

TEST_F(RecordedService, LeavesARecordingWhenItIsKilled)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    useEc();
    service.kill();
    service.noteKill();
    ASSERT_EQ(recordings().size(), 1);
    const ToolOutcome shown = tarnsim({"recording", file()});
    EXPECT_EQ(shown.exitCode, 0) << shown.err.toStdString();
    EXPECT_TRUE(shown.out.contains("read   0x06A6 ACCESSORY_CODE = 0x01 (1)"));
    const ToolOutcome compared = tarnsim({"compare", file()});
    EXPECT_EQ(compared.exitCode, 0) << compared.out.toStdString() << compared.err.toStdString();
}

TEST_F(RecordedService, IsNotRecordedWithoutTheSwitch)
{
    ASSERT_TRUE(service.start()) << service.log().toStdString();
    EXPECT_EQ(service.stop(), 0);
    EXPECT_EQ(recordings(), QStringList());
    const ToolOutcome compared = tarnsim({"compare", service.path("function/ec-none.recording")});
    EXPECT_EQ(compared.exitCode, 1);
    EXPECT_TRUE(compared.err.contains("cannot be read")) << compared.err.toStdString();
}
