#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"

#include "device/ec_registers.h"
#include "support/pipe_peer.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using tarnTest::waitUntil;

namespace {

const QByteArray firmware(150000, 'n'); // more than two calls copy
const QByteArray olderFirmware(1000, 'o');
constexpr int shards = 4;
constexpr int fewestCalls =
    8; // opening, writing, flushing, closing, renaming; else nothing has been looked at

} // namespace

// A service that is killed before each of its calls for the MCU's firmware file. Where the flasher looks
// there is always a whole file, the older or the new one, and none gets lost.
class FirmwareKill : public ::testing::TestWithParam<int>
{
protected:
    FirmwareKill()
    {
        QProcessEnvironment environment = service.process.processEnvironment();
        environment.insert("TARN_KILL_POINT", service.path("kill_point"));
        environment.insert("LD_PRELOAD", TARN_KILL_POINT_LIBRARY);
        service.process.setProcessEnvironment(environment);
        service.attach(tarnDeviceInfos::ACCESSORY_KVANE);
        const QString flasher = service.path("function/MCU/stm32flash.exe");
        QFile::remove(flasher);
        service.write("function/MCU/stm32flash.exe", "#!/bin/sh\ncp \"$2\" flashed\n");
        QFile(flasher).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    [[nodiscard]] QString downloaded() const { return QDir(service.downloads()).filePath("fw.bin"); }
    void offer()
    {
        QFile file(downloaded());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(firmware), firmware.size());
        service.write("function/MCU/fw.bin", olderFirmware);
    }
    // False when the service has done with the file before that.
    [[nodiscard]] bool dieBeforeCall(int number)
    {
        offer();
        EXPECT_TRUE(service.start()) << service.log().toStdString();
        service.write("kill_point", QByteArray::number(number));
        tarnTest::ServiceClient client;
        EXPECT_TRUE(client.connectToService());
        client.write(R"({"cmd":"requestMcuUpdate","data":"fw.bin"})");
        EXPECT_TRUE(waitUntil(
            [this] {
                return service.process.state() == QProcess::NotRunning
                    || service.log().contains("mcuUpdate Enter |");
            },
            30000));
        QFile::remove(service.path("kill_point"));
        const bool died = !service.log().contains("mcuUpdate Enter |");
        service.kill();
        return died;
    }
    void expectWholeFiles(int call) const
    {
        const QByteArray taken = service.read("function/MCU/fw.bin");
        EXPECT_TRUE(taken == firmware || taken == olderFirmware) << call << ": " << taken.size() << " bytes";
        EXPECT_TRUE(taken == firmware || QFile::exists(downloaded())) << call;
        const QStringList files = QDir(service.path("function/MCU")).entryList({"*fw*", "qt_temp*"});
        EXPECT_EQ(files, QStringList({"fw.bin"})) << call;
    }

    tarnTest::ServiceProcess service;
};

TEST_P(FirmwareKill, LeavesWholeFilesOnly)
{
    int call = GetParam();
    for (; dieBeforeCall(call); call += shards)
        expectWholeFiles(call);
    EXPECT_GT(call, fewestCalls);
    expectWholeFiles(call);

    offer();
    ASSERT_TRUE(service.start());
    tarnTest::ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.ask({{"cmd", "requestMcuUpdate"}, {"data", "fw.bin"}}).value("data"), "successed");
    EXPECT_EQ(service.read("function/MCU/flashed"), firmware);
    EXPECT_FALSE(QFile::exists(service.path("function/MCU.part")));
    EXPECT_EQ(service.stop(), 0);
}

INSTANTIATE_TEST_SUITE_P(Calls, FirmwareKill, ::testing::Range(0, shards));
