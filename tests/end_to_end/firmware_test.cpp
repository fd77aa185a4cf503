#include "end_to_end/mcu_port.h"
#include "end_to_end/running_service.h"

#include "device/ec_registers.h"
#include "simulator/firmware_image.h"
#include "support/time_bound.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

using namespace tarnDeviceInfos;
using tarnSimulator::McuMode;
using tarnTest::waitUntil;
using Bytes = std::vector<std::uint8_t>;

namespace {

QByteArray bytesOf(const Bytes &image)
{
    return {reinterpret_cast<const char *>(image.data()), static_cast<qsizetype>(image.size())};
}

} // namespace

// A service, a client, a download folder and the tools.
class FirmwareUpdate : public tarnTest::RunningService
{
protected:
    void download(const QByteArray &content, const char *name = "fw.bin")
    {
        QFile file(QDir(service.downloads()).filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }
    [[nodiscard]] bool isDownloaded(const char *name = "fw.bin") const
    {
        return QFile::exists(QDir(service.downloads()).filePath(name));
    }
};

// With the real flasher at the other end of the serial line.
class McuFirmware : public FirmwareUpdate
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(port.open(service)) << "no serial port to the MCU is served";
        service.attach(ACCESSORY_KVANE);
        FirmwareUpdate::SetUp();
        ASSERT_EQ(client.answer("getMcuVersion"), "2.05");
    }

    [[nodiscard]] QString update(const char *name = "fw.bin")
    {
        return client.ask({{"cmd", "requestMcuUpdate"}, {"data", name}}).value("data").toString();
    }
    void expectInFlash(const Bytes &image)
    {
        Bytes flash = service.computer().mcuFlash();
        flash.resize(image.size());
        EXPECT_TRUE(flash == image);
    }
    // After whatever went wrong, the MCU starts normally, and the next update works.
    void expectNextUpdateWorks()
    {
        EXPECT_NE(service.computer().mcuMode(), McuMode::BootLoader);
        EXPECT_EQ(service.computer().peek(EC_MCU_UPDATE_CTRL), 0);
        service.repair();
        const Bytes image = tarnSimulator::makeFirmwareImage({9, 8, 7});
        download(bytesOf(image));
        EXPECT_EQ(client.ask({{"cmd", "requestMcuUpdate"}, {"data", "fw.bin"}}).value("mcuVer"), "9.87");
        expectInFlash(image);
    }

    const Bytes firmware = tarnSimulator::makeFirmwareImage({7, 1, 2});
    tarnTest::McuPort port;
};

TEST_F(McuFirmware, IsFlashedAndRunsAfterwards)
{
    download(bytesOf(firmware));
    const QJsonObject reply = client.ask({{"cmd", "requestMcuUpdate"}, {"data", "fw.bin"}});
    EXPECT_EQ(reply.value("data"), "successed");
    EXPECT_EQ(reply.value("mcuVer"), "7.12");
    expectInFlash(firmware);
    EXPECT_FALSE(isDownloaded());
    EXPECT_TRUE(service.log().contains("mcuUpdateProcess successfully"));
    EXPECT_EQ(client.answer("getMcuVersion"), "7.12");
}

struct FlashFault
{
    const char *fault;
    int value;
    int runs;
};

class McuFirmwareFault : public McuFirmware, public ::testing::WithParamInterface<FlashFault>
{ };

TEST_P(McuFirmwareFault, IsToldAndTheNextUpdateWorks)
{
    download(bytesOf(firmware));
    service.breakDown(GetParam().fault, GetParam().value);
    EXPECT_EQ(update(), "failed");
    EXPECT_EQ(service.logCount("mcuUpdateProcess failed. Error message: "), GetParam().runs);
    EXPECT_TRUE(service.log().contains("mcuUpdateProcess failed 3 times."));
    expectNextUpdateWorks();
}

INSTANTIATE_TEST_SUITE_P(Faults, McuFirmwareFault,
    ::testing::Values(FlashFault {"flash-write-refused", 8, 3}, FlashFault {"flash-corrupt", 0, 3},
        FlashFault {"flash-unplugged", 8, 3}));

TEST_F(McuFirmware, OfNoKindIsFlashedAsItIsAndCanBeReplaced)
{
    download("this is no firmware at all");
    EXPECT_EQ(update(), "successed"); // the flasher has nothing to complain about
    EXPECT_EQ(service.computer().mcuMode(), McuMode::NoFirmware);
    expectNextUpdateWorks();
}

TEST_F(McuFirmware, LetsTheOthersWaitAndTheClientLeave)
{
    download(bytesOf(firmware));
    client.write(R"({"cmd":"requestMcuUpdate","data":"fw.bin","mark":"update"})");
    ASSERT_TRUE(service.waitForLog("mcuUpdate Enter |"));
    EXPECT_EQ(client.answer("getAccessoryType"), "k_vane"); // needs no EC
    client.leave();
    ASSERT_TRUE(service.waitForLog("Tarn pipe client is exit!"));
    tarnTest::ServiceClient again;
    ASSERT_TRUE(again.connectToService());
    EXPECT_EQ(again.answer("getHardwareVersion"), "4"); // waits for the end of the update
    EXPECT_TRUE(
        waitUntil([&] { return again.documents().join('\n').contains(R"("mcuVer":"7.12")"); }, 30000));
}

TEST_F(McuFirmware, IsStoppedWithTheServiceAndRecoversWithTheNextUpdate)
{
    download(bytesOf(firmware));
    client.write(R"({"cmd":"requestMcuUpdate","data":"fw.bin"})");
    ASSERT_TRUE(service.waitForLog("mcuUpdate Enter |"));
    ASSERT_TRUE(waitUntil([this] { return service.computer().mcuMode() == McuMode::BootLoader; }, 20000));
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(service.stop(), 0);
    EXPECT_LT(time.elapsed(), tarnTest::allowedMs(4000));
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(client.connectToService());
    download(bytesOf(firmware));
    EXPECT_EQ(client.ask({{"cmd", "requestMcuUpdate"}, {"data", "fw.bin"}}).value("mcuVer"), "7.12");
    EXPECT_EQ(service.computer().mcuMode(), McuMode::Firmware);
}

TEST_F(McuFirmware, IsNotFlashedWhenTheKVaneIsPulledOffAndIsWhenItIsBack)
{
    download(bytesOf(firmware));
    client.write(R"({"cmd":"requestMcuUpdate","data":"fw.bin","asked":"once"})");
    ASSERT_TRUE(waitUntil([this] { return service.computer().mcuMode() == McuMode::BootLoader; }, 20000));
    service.computer().detach();
    EXPECT_TRUE(client.waitConnected(
        [this] {
            return client.documents().join().contains(
                R"("asked":"once","cmd":"requestMcuUpdate","data":"failed"})");
        },
        60000));
    EXPECT_TRUE(client.waitForNotification("changeAccessoryType", "disconnected"));
    EXPECT_EQ(service.computer().peek(EC_MCU_UPDATE_CTRL), 0);
    service.attach(ACCESSORY_KVANE);
    EXPECT_TRUE(client.waitForNotification("changeAccessoryType", "k_vane"));
    expectNextUpdateWorks();
}

TEST_F(McuFirmware, IsFlashedByTheClientItselfInUpdateMode)
{
    EXPECT_EQ(client.answer("requestEnterMcuUpdateMode"), "successed");
    EXPECT_EQ(service.computer().mcuMode(), McuMode::BootLoader);
    client.leave(); // and another client ends the mode
    ASSERT_TRUE(service.waitForLog("Tarn pipe client is exit!"));
    tarnTest::ServiceClient again;
    ASSERT_TRUE(again.connectToService());
    EXPECT_EQ(again.answer("getAccessoryType"), "k_vane");
    EXPECT_EQ(again.answer("requestLeaveMcuUpdateMode"), "2.05");
    EXPECT_EQ(again.answer("requestLeaveMcuUpdateMode"), "2.05"); // harmless a second time
    EXPECT_EQ(again.answer("getHardwareVersion"), "4");
}

TEST_F(FirmwareUpdate, RefusesNamesThatLeaveTheFolders)
{
    service.write("fw.bin", "outside");
    for (const char *name :
        {"../fw.bin", "..\\fw.bin", "C:fw.bin", "fw.bin:x", "", "a\nBinName=b", "stm32flash.exe"}) {
        EXPECT_EQ(client.ask({{"cmd", "requestMcuUpdate"}, {"data", name}}).value("data"), "failed") << name;
        EXPECT_EQ(client.ask({{"cmd", "requestEcUpdate"}, {"data", name}}).value("data"), "failed") << name;
    }
    EXPECT_EQ(service.read("fw.bin"), "outside");
    EXPECT_FALSE(service.read("function/EC/uiset.ini").contains("BinName=b"));
    EXPECT_EQ(client.answer("getHardwareVersion"), "0"); // the EC is free
}

TEST_F(FirmwareUpdate, OfTheEcRunsItsTool)
{
    download("firmware of the EC", "ec.bin");
    EXPECT_EQ(client.answer("requestStartEcUpdate"), "successed");
    EXPECT_EQ(client.answer("requestEcUpdate", "ec.bin"), "successed");
    EXPECT_EQ(service.read("function/EC/ec_tool.log"),
        "ACPI PORT = 0x68\nAutoFlash = 1\nBRAM BANK = 0\nBRAM Start index = 0x7\nBinName = ec.bin\n"
        "FW VERSION SHOW = 0\nFlashEnd CMD = 0xFC\nHEX DISPLAY = 0\nIO = 1\nRead BYTES = 3\n"
        "Read Method = 0\nShutdown = 1\nSilentRun = 1\nSpeed = 3\nWarring Show = 0\n"
        "flashed 18 bytes of ec.bin\n");
    EXPECT_EQ(service.read("function/EC/ec.bin"), "firmware of the EC");
    EXPECT_FALSE(isDownloaded("ec.bin"));
    // Until a restart nothing reaches the EC, but the service answers what it knows.
    EXPECT_EQ(client.answer("getTarnBatteryNum"), "80");
    EXPECT_TRUE(client.ask({{"cmd", "getHardwareVersion"}}, 1500).isEmpty());
    EXPECT_EQ(service.stop(), 0);
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.answer("getHardwareVersion"), "0");
}

TEST_F(FirmwareUpdate, OfTheEcReplacesWriteProtectedSettings)
{
    ASSERT_TRUE(
        QFile::setPermissions(service.path("function/EC/uiset.ini"), QFile::ReadOwner | QFile::ReadUser));
    download("firmware of the EC", "ec.bin");
    EXPECT_EQ(client.answer("requestEcUpdate", "ec.bin"), "successed");
    EXPECT_TRUE(service.read("function/EC/uiset.ini").contains("BinName=ec.bin\n"));
}

// The service in a session without a display, with a user at the console.
class FirmwareOfConsoleUser : public FirmwareUpdate
{
protected:
    void SetUp() override
    {
        service.computer().desktop().setServiceSession(true);
        FirmwareUpdate::SetUp();
        ASSERT_TRUE(QDir(service.path(".")).mkpath("console_user/Downloads"));
        service.write(download, "firmware of the EC");
    }

    static constexpr char download[] = "console_user/Downloads/from_the_user.bin";
};

TEST_F(FirmwareOfConsoleUser, IsTakenFromTheDownloadsOfTheUser)
{
    EXPECT_EQ(client.answer("requestEcUpdate", "from_the_user.bin"), "successed");
    EXPECT_EQ(service.read("function/EC/from_the_user.bin"), "firmware of the EC");
    EXPECT_FALSE(QFile::exists(service.path(download)));
    EXPECT_TRUE(service.log().contains("console_user/Downloads/from_the_user.bin\" 11111111112333333333"));
}

TEST_F(FirmwareOfConsoleUser, StaysWhereItIsWhenNobodyIsLoggedOn)
{
    service.breakDown("no-console-session");
    EXPECT_EQ(client.answer("requestEcUpdate", "from_the_user.bin"), "failed");
    EXPECT_TRUE(QFile::exists(service.path(download)));
    EXPECT_FALSE(QFile::exists(service.path("function/EC/from_the_user.bin")));
}
