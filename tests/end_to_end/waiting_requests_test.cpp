#include "device/ec_registers.h"
#include "end_to_end/running_service.h"
#include "support/time_bound.h"

#include <QElapsedTimer>

using namespace tarnDeviceInfos;

namespace {

constexpr int promptAnswerMs = 5000; // behind a few notifications, half a second each

} // namespace

// A KVane, and many requests that wait for an EC which another holder has taken.
class WaitingRequests : public tarnTest::RunningService
{
protected:
    void SetUp() override
    {
        service.attach(ACCESSORY_KVANE);
        RunningService::SetUp();
        ASSERT_EQ(client.answer("getMcuVersion"), "2.05");
    }
    // Sends that many requests, each in a read of its own and with its handler started.
    void send(const QByteArray &command, int times)
    {
        const QString read = QStringLiteral(R"("{\"cmd\":\"%1\"}")").arg(QLatin1String(command));
        const qsizetype before = service.logCount(read);
        for (int sent = 1; sent <= times; ++sent) {
            client.write(R"({"cmd":")" + command + R"("})");
            ASSERT_TRUE(service.waitForLog(read, static_cast<int>(before) + sent)) << sent;
        }
    }
    [[nodiscard]] QString promptAnswer(const char *command)
    {
        return client.ask({{"cmd", command}}, promptAnswerMs).value("data").toString();
    }
    void expectPromptStop()
    {
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(service.stop(), 0) << service.log().right(2000).toStdString();
        EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(tarnTest::promptStopMs));
    }

    static constexpr int moreThanThreads = 70;
};

TEST_F(WaitingRequests, DoNotHoldUpTheLeaveThatFreesTheEc)
{
    ASSERT_EQ(client.answer("requestEnterMcuUpdateMode"), "successed");
    send("getHardwareVersion", moreThanThreads);
    client.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
    EXPECT_TRUE(service.waitForLog("Enter Leave Mcu Update Mode\n", 1, promptAnswerMs));
    // Then all of them get the EC, and so does the version that the leave is answered with.
    EXPECT_TRUE(service.waitForLog("Hardware Version is:  \"4\"\n", moreThanThreads));
    EXPECT_TRUE(service.waitForLog("Mcu Version is:  \"2.05\"\n", 2));
}

TEST_F(WaitingRequests, OfAllKindsStopNeitherTheOthersNorTheEnd)
{
    ASSERT_EQ(client.answer("requestStartEcUpdate"), "successed");
    send("requestEnterMcuUpdateMode", 1);
    ASSERT_TRUE(service.waitForLog("Enter Enter Mcu Update Mode\n"));
    constexpr int leaves = 200;
    send("requestLeaveMcuUpdateMode", leaves);
    send("getMcuUpdateParameters", moreThanThreads);
    EXPECT_EQ(promptAnswer("getAccessoryType"), "k_vane");
    // One leave waits for the enter, and all others for that one.
    EXPECT_EQ(service.logCount("Enter Leave Mcu Update Mode\n"), 1);
    expectPromptStop();
}

// Here no request waits for the EC, so the end of the process wakes none.
TEST_F(WaitingRequests, DoNotHoldUpTheEndWhenTheyAreInTheMiddleOfTheirWork)
{
    ASSERT_EQ(client.answer("requestEnterMcuUpdateMode"), "successed");
    send("requestLeaveMcuUpdateMode", 1); // writes for 4 s
    send("requestBeginGraphicsMcuUpdate", 1); // prepares for 3 s
    ASSERT_TRUE(service.waitForLog("Enter Leave Mcu Update Mode\n"));
    ASSERT_TRUE(service.waitForLog("GraphicsDisengaged_log: begin to ban gpu for mcu update.\n"));
    expectPromptStop();
    EXPECT_FALSE(service.log().contains("ban gpu successed for mcu update."));
}
