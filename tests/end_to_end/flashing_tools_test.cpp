#include "end_to_end/running_service.h"
#include "end_to_end/test_system.h"

#include "device/ec_registers.h"
#include "support/time_bound.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>

#include <memory>

// What becomes of a tool that flashes when its service ends, and of a service that finds one at work. The
// tools print all the while, and flash until the test lets them finish.
using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

namespace {

const QString refusal = "Refused, because this tool is running already: ";
const QString leftAlone = "The EC tool is running already, so the EC is left alone until it has ended.";
const QString goesOn = "The service ends while a tool flashes; the tool goes on until it is done.";

struct Tool
{
    const char *request;
    const char *file;
    const char *program;
    const char *firmware; // where the service puts it
    const char *go;
    const char *log; // of the tool
    const char *begun;
    const char *done;
    const char *left; // what the service says when it has seen the tool end
};

constexpr Tool ecTool = {"requestEcUpdate", "ec.bin", "function/EC/IFU_XE.exe", "function/EC/ec.bin",
    "function/EC/go", "function/EC/ec_tool.log", "BinName = ec.bin", "flashed 8 bytes of ec.bin",
    "ecUpdate Leave |"};
constexpr Tool flasher = {"requestMcuUpdate", "fw.bin", "function/MCU/stm32flash.exe", "function/MCU/fw.bin",
    "function/MCU/go", "function/MCU/slow_flasher.log", "begun", "done", "mcuUpdate Leave |"};

} // namespace

class FlashingTools : public tarnTest::RunningService
{
protected:
    void SetUp() override
    {
        service.attach(ACCESSORY_KVANE);
        service.write(ecSettings, service.read(ecSettings) + "FlashUntil=go\n");
        const QString program = service.path(flasher.program);
        QFile::remove(program);
        ASSERT_TRUE(QFile::copy(tarnTest::standIn("slow_flasher.exe"), program));
        RunningService::SetUp();
    }
    void TearDown() override
    {
        for (const Tool &tool : {ecTool, flasher})
            letFinish(tool); // whatever still runs
        RunningService::TearDown();
    }

    void download(const Tool &tool) const
    {
        QFile file(downloaded(tool));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write("firmware"), 8);
    }
    [[nodiscard]] QString downloaded(const Tool &tool) const
    {
        return QDir(service.downloads()).filePath(tool.file);
    }
    // Begins an update; its tool is at work afterwards.
    void begin(const Tool &tool)
    {
        download(tool);
        client.write(QByteArray(R"({"cmd":")") + tool.request + R"(","data":")" + tool.file + R"("})");
        ASSERT_TRUE(waitUntil([&] { return says(tool, tool.begun); }, 30000));
    }
    void letFinish(const Tool &tool) const { service.write(tool.go, ""); }
    [[nodiscard]] bool says(const Tool &tool, const char *text) const
    {
        return service.read(tool.log).contains(text);
    }
    [[nodiscard]] QString update(const Tool &tool, ServiceClient &by)
    {
        return by.ask({{"cmd", tool.request}, {"data", tool.file}}).value("data").toString();
    }

    // Serves clients, but does not come to its first detection.
    [[nodiscard]] bool startBesideTheTool()
    {
        return service.launch({"-exec"}) && service.waitForLog("getAccessoryTypeForFirst Enter |")
            && service.log().contains(leftAlone);
    }

    void expectPromptEnd(QElapsedTimer since)
    {
        ASSERT_TRUE(service.waitForEnd(15000));
        EXPECT_LT(since.elapsed(), tarnTest::allowedMs(tarnTest::promptStopMs));
        EXPECT_EQ(service.process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(service.process.exitCode(), 0);
        EXPECT_EQ(service.logCount(goesOn), 1);
    }
    // The tool finishes its work after the service has ended; the service has not logged its end.
    void expectToDoItsWork(const Tool &tool)
    {
        EXPECT_FALSE(service.log().contains(tool.left));
        EXPECT_FALSE(says(tool, tool.done));
        letFinish(tool);
        EXPECT_TRUE(waitUntil([&] { return says(tool, tool.done); }));
    }
    [[nodiscard]] quint64 accesses()
    {
        const auto &counters = service.computer().counters();
        return counters.reads.load() + counters.writes.load();
    }
    [[nodiscard]] int controlWrites()
    {
        int count = 0;
        for (const auto &access : service.computer().registerLog().readAfter(0).accesses) {
            if (access.kind == tarnSimulator::AccessKind::Write && access.address == EC_MCU_UPDATE_CTRL)
                ++count;
        }
        return count;
    }

    static constexpr char ecSettings[] = "function/EC/uiset.ini";
};

// How the service ends.
struct End
{
    const char *name;
    void (*cause)(tarnTest::Terminal &, tarnTest::ServiceProcess &);
    bool isInOrder;
};

constexpr End ends[] = {
    {"CtrlCInTheTerminal", [](auto &terminal, auto &) { terminal.interrupt(); }, true},
    {"TheTerminalsEnd", [](auto &terminal, auto &) { terminal.close(); }, true},
    {"AStop", [](auto &, auto &service) { tarnTest::requestStop(service.process); }, true},
    {"AKill", [](auto &, auto &service) { service.kill(); }, false},
};

class FlashingTool : public FlashingTools, public ::testing::WithParamInterface<std::tuple<Tool, End>>
{
protected:
    FlashingTool()
        : terminal(std::make_unique<tarnTest::Terminal>(service.process))
    { }
    void TearDown() override { letFinish(tool); }

    const Tool &tool = std::get<Tool>(GetParam());
    const End &end = std::get<End>(GetParam());
    std::unique_ptr<tarnTest::Terminal> terminal;
};

INSTANTIATE_TEST_SUITE_P(Tools, FlashingTool,
    ::testing::Combine(::testing::Values(ecTool, flasher), ::testing::ValuesIn(ends)), [](const auto &row) {
        return std::string(std::get<Tool>(row.param).request) + std::get<End>(row.param).name;
    });

TEST_P(FlashingTool, OutlivesItsService)
{
    begin(tool);
    QElapsedTimer timer;
    timer.start();
    end.cause(*terminal, service);
    if (end.isInOrder)
        expectPromptEnd(timer);
    expectToDoItsWork(tool);
}

TEST_F(FlashingTools, OfTheEcKeepTheNextServiceFromTheEc)
{
    begin(ecTool);
    service.kill();
    const quint64 before = accesses();
    ASSERT_TRUE(startBesideTheTool());
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    EXPECT_EQ(client.answer("getTarnBatteryNum"), "251");
    const QByteArray settings = service.read(ecSettings);
    download(ecTool);
    EXPECT_EQ(update(ecTool, client), "failed");
    EXPECT_TRUE(service.log().contains(refusal));
    EXPECT_EQ(service.read(ecSettings), settings);
    EXPECT_TRUE(QFile::exists(downloaded(ecTool)));
    EXPECT_TRUE(client.ask({{"cmd", "getHardwareVersion"}}, 1500).isEmpty()); // waits for the EC
    EXPECT_EQ(client.notificationCount("getTarnBatteryNum", "251"), 0);
    EXPECT_EQ(accesses(), before);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(service.stop(), 0);
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(tarnTest::promptStopMs));
    EXPECT_EQ(accesses(), before);
    EXPECT_FALSE(says(ecTool, ecTool.done));

    ASSERT_TRUE(startBesideTheTool());
    ServiceClient next;
    ASSERT_TRUE(next.connectToService());
    EXPECT_EQ(next.answer("getAccessoryType"), "disconnected");
    EXPECT_EQ(accesses(), before);
    letFinish(ecTool);
    EXPECT_EQ(next.answer("getHardwareVersion"), "4");
    EXPECT_TRUE(says(ecTool, ecTool.done));
    EXPECT_TRUE(service.log().contains("The EC tool has ended, so the EC is free."));
    EXPECT_EQ(service.logCount("getAccessoryTypeForFirst Enter |"), 1);
    EXPECT_TRUE(next.waitForNotification("getTarnBatteryNum", "80"));
    EXPECT_EQ(next.answer("getAccessoryType"), "k_vane");
    EXPECT_EQ(update(ecTool, next), "successed");
}

TEST_F(FlashingTools, OfTheMcuAreNotDisturbedByTheNextService)
{
    begin(flasher);
    service.kill();
    ASSERT_TRUE(service.start());
    EXPECT_FALSE(service.log().contains(leftAlone));
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.answer("getAccessoryType"), "k_vane"); // the EC is free
    const int before = controlWrites();
    download(flasher);
    EXPECT_EQ(update(flasher, client), "failed");
    EXPECT_TRUE(QFile::exists(downloaded(flasher)));
    EXPECT_EQ(client.answer("requestEnterMcuUpdateMode"), "failed");
    EXPECT_EQ(service.logCount(refusal), 2);
    EXPECT_EQ(controlWrites(), before);
    EXPECT_FALSE(says(flasher, flasher.done));
    letFinish(flasher);
    ASSERT_TRUE(waitUntil([this] { return says(flasher, flasher.done); }));
    EXPECT_TRUE(waitUntil([this] { return update(flasher, client) == "successed"; }, 60000));
}

TEST_F(FlashingTools, AreNotRunOnADockThatHasReplacedTheKVane)
{
    EXPECT_EQ(client.answer("requestEnterMcuUpdateMode"), "successed");
    service.attach(ACCESSORY_DOCK);
    download(flasher);
    client.write(R"({"cmd":"requestMcuUpdate","data":"fw.bin","asked":"late"})");
    ASSERT_TRUE(service.waitForLog("mcuUpdate Enter |"));
    waitUntil([] { return false; }, 1500); // longer than a cycle of the monitor holds the EC
    EXPECT_NE(client.answer("requestLeaveMcuUpdateMode"), "(no reply)");
    EXPECT_TRUE(waitUntil([this] {
        return client.documents().contains(R"({"asked":"late","cmd":"requestMcuUpdate","data":"failed"})");
    }));
    EXPECT_TRUE(service.log().contains("MCU and base handshake failed!"));
    EXPECT_FALSE(service.log().contains("mcuUpdateProcess Enter |"));
    EXPECT_EQ(controlWrites(), 8); // of enter and leave
    EXPECT_TRUE(client.waitForNotification("changeAccessoryType", "dock"));
}

TEST_F(FlashingTools, GetAFirmwareThatReplacesAWriteProtectedOne)
{
    service.write(flasher.firmware, "older");
    ASSERT_TRUE(QFile::setPermissions(service.path(flasher.firmware), QFile::ReadOwner | QFile::ReadUser));
    letFinish(flasher);
    download(flasher);
    EXPECT_EQ(update(flasher, client), "successed");
    EXPECT_EQ(service.read(flasher.firmware), "firmware");
}

// As the tool writes it: in the code page of the system.
TEST_F(FlashingTools, MayComplainInTheLanguageOfTheUser)
{
    const QString complaint = QStringLiteral("Ger\u00e4t fehlt");
    service.write("function/MCU/complaint", complaint.toLocal8Bit());
    letFinish(flasher);
    download(flasher);
    EXPECT_EQ(update(flasher, client), "failed");
    EXPECT_EQ(service.logCount("mcuUpdateProcess failed. Error message:  \"" + complaint + "\""), 3);
}
